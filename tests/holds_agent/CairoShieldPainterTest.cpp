#include <gtest/gtest.h>

#include <cairo.h>

#include <cmath>
#include <memory>
#include <string>

#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "tests/holds_agent/MacHoldsFakes.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi::holds::desktop {
namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

MacHoldsShieldView shieldView(MacHoldsDue::Kind kind, std::optional<std::string> appName,
                              std::optional<std::string> stage = std::nullopt) {
  return {.due = {kind, Date::fromUnixMillis(1'795'427'400'000)}, .appName = std::move(appName), .openKovi = {},
          .back = {}, .catStage = std::move(stage)};
}

Surface render(const MacHoldsShieldView& view, const kovi::testing::TemporaryDirectory& directory,
               const std::string& name) {
  const auto file = directory.path() / name;
  const auto written = writeShieldPng(view, PurrlFontStore(), holds::testing::istanbulCalendar(), file);
  EXPECT_TRUE(written.has_value()) << (written ? "" : written.error());
  return Surface(cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy);
}

// The pixel at (x, y) as 0xRRGGBB.
std::uint32_t pixel(cairo_surface_t* surface, int x, int y) {
  cairo_surface_flush(surface);
  const auto* row = cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
  return reinterpret_cast<const std::uint32_t*>(row)[x] & 0xffffff;
}

// Whether any pixel differs inside the rectangle.
bool regionsDiffer(cairo_surface_t* first, cairo_surface_t* second, const MacHoldsShieldRect& rect) {
  for (int y = static_cast<int>(rect.y); y < static_cast<int>(rect.maxY()); ++y) {
    for (int x = static_cast<int>(rect.x); x < static_cast<int>(rect.maxX()); ++x) {
      if (pixel(first, x, y) != pixel(second, x, y)) return true;
    }
  }
  return false;
}

TEST(CairoShieldPainter, DrawsEveryHoldOnPaperAtTheLayoutsSize) {
  const kovi::testing::TemporaryDirectory directory;
  for (auto kind : {MacHoldsDue::Kind::study, MacHoldsDue::Kind::sleep, MacHoldsDue::Kind::social}) {
    for (const std::optional<std::string>& name : {std::optional<std::string>("Discord"), std::optional<std::string>()}) {
      SCOPED_TRACE(std::string(enumName(kind)) + " " + name.value_or("unnamed"));
      const auto view = shieldView(kind, name);
      const Surface image = render(view, directory, "shield.png");
      ASSERT_EQ(cairo_surface_status(image.get()), CAIRO_STATUS_SUCCESS);
      const auto layout = CairoShieldPainter(PurrlFontStore()).layout(view, holds::testing::istanbulCalendar());
      EXPECT_EQ(cairo_image_surface_get_width(image.get()), 480);
      EXPECT_EQ(cairo_image_surface_get_height(image.get()), static_cast<int>(std::ceil(layout.size.height)));
      EXPECT_GE(layout.size.height, 220);
      // Paper in the corner, and the primary button filled with the accent colour.
      EXPECT_EQ(pixel(image.get(), 2, 2), 0xf5f0eau);
      const auto& back = layout.buttons[1].frame;
      EXPECT_EQ(pixel(image.get(), static_cast<int>(back.x + 6), static_cast<int>(back.y + back.height / 2)),
                0xde7a48u);
    }
  }
}

TEST(CairoShieldPainter, TheKittenIsDrawnDifferentlyFromTheGrownCat) {
  const kovi::testing::TemporaryDirectory directory;
  const auto kitten = shieldView(MacHoldsDue::Kind::study, "Discord", "kitten");
  const Surface young = render(shieldView(MacHoldsDue::Kind::study, "Discord", "young"), directory, "young.png");
  const Surface grown = render(shieldView(MacHoldsDue::Kind::study, "Discord", "grown"), directory, "grown.png");
  const Surface small = render(kitten, directory, "kitten.png");
  const auto cat = CairoShieldPainter(PurrlFontStore()).layout(kitten, holds::testing::istanbulCalendar()).cat;
  EXPECT_TRUE(regionsDiffer(small.get(), grown.get(), cat));
  EXPECT_FALSE(regionsDiffer(young.get(), grown.get(), cat));
}

TEST(CairoShieldPainter, ALongNameMakesTheShieldTallerNotWider) {
  const CairoShieldPainter painter{PurrlFontStore()};
  const auto calendar = holds::testing::istanbulCalendar();
  const auto shortName = painter.layout(shieldView(MacHoldsDue::Kind::sleep, "Steam"), calendar);
  const auto longName = painter.layout(
      shieldView(MacHoldsDue::Kind::sleep, "A Remarkably Long Application Name That Needs Two Lines"), calendar);
  EXPECT_EQ(longName.size.width, shortName.size.width);
  EXPECT_GT(longName.size.height, shortName.size.height);
  EXPECT_GT(longName.buttons[1].frame.y, shortName.buttons[1].frame.y);
}

TEST(CairoShieldPainter, UnwritablePathIsReportedWithTheFileName) {
  const auto written = writeShieldPng(shieldView(MacHoldsDue::Kind::study, std::nullopt), PurrlFontStore(),
                                      holds::testing::istanbulCalendar(), "/nonexistent/shield.png");
  ASSERT_FALSE(written.has_value());
  EXPECT_NE(written.error().find("/nonexistent/shield.png"), std::string::npos);
}

}  // namespace
}  // namespace kovi::holds::desktop
