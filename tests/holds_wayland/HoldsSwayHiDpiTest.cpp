#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>

#include "KoviMacHolds/MacHoldsShieldLayout.h"
#include "KoviMacHolds/platform/wayland/demo/PrivateSway.h"
#include "tests/holds_x11/HoldsSnapshotNow.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi::holds::wayland {
namespace {

constexpr int kScale = 2;
constexpr std::uint32_t kPaper = 0xf5f0ea;  // the shield's paper, 245 240 234

std::string readText(const std::filesystem::path& file) {
  std::ifstream in(file);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// A screenshot's pixels as 0xRRGGBB.
struct Screen {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
  std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x] & 0xffffff; }
};

std::optional<Screen> readScreen(const std::filesystem::path& file) {
  cairo_surface_t* image = cairo_image_surface_create_from_png(file.c_str());
  if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(image);
    return std::nullopt;
  }
  Screen screen{cairo_image_surface_get_width(image), cairo_image_surface_get_height(image), {}};
  const int stride = cairo_image_surface_get_stride(image);
  screen.pixels.resize(static_cast<std::size_t>(screen.width) * screen.height);
  for (int y = 0; y < screen.height; ++y) {
    std::memcpy(&screen.pixels[static_cast<std::size_t>(y) * screen.width],
                cairo_image_surface_get_data(image) + static_cast<std::ptrdiff_t>(y) * stride,
                static_cast<std::size_t>(screen.width) * 4);
  }
  cairo_surface_destroy(image);
  return screen;
}

// On an output of scale 2 the shield keeps its size in logical units and is
// drawn with the output's pixels: a shield drawn at scale 1 and enlarged by
// the compositor has every aligned 2×2 block of one colour, or blurred into
// a few smooth steps; one drawn at scale 2 has text edges inside the blocks.
TEST(HoldsSwayHiDpi, ShieldKeepsItsLogicalSizeAndIsDrawnWithTheOutputsPixels) {
  if (!PrivateSway::isAvailable()) GTEST_SKIP() << "sway, foot, grim and wtype are needed for the Wayland desktop tests";
  kovi::testing::TemporaryDirectory scratch;
  std::filesystem::create_directories(scratch.path() / "data" / "Kovi" / "Holds");
  auto sway = PrivateSway::start(scratch.path());
  ASSERT_TRUE(sway.has_value()) << sway.error();
  const int physicalWidth = PrivateSway::width * kScale, physicalHeight = PrivateSway::height * kScale;
  ASSERT_TRUE(sway->command("output HEADLESS-1 mode " + std::to_string(physicalWidth) + "x" +
                            std::to_string(physicalHeight) + " scale " + std::to_string(kScale))
                  .has_value());
  std::ofstream(scratch.path() / "data" / "Kovi" / "Holds" / "holds.json")
      << holds::testing::snapshotHoldingNow(holds::testing::HoldNow::sleep);
  auto agent = sway->startProgram({KOVI_HOLDS_BINARY, "run"},
                                  {{"TZ", "UTC"}, {"XDG_DATA_HOME", (scratch.path() / "data").string()}},
                                  std::nullopt, scratch.path() / "agent.log");
  ASSERT_TRUE(agent.has_value()) << agent.error();
  auto discord = sway->startStandIn("discord");
  ASSERT_TRUE(discord.has_value()) << discord.error();

  const int left = (physicalWidth - static_cast<int>(MacHoldsShieldLayout::width) * kScale) / 2;
  const auto shot = scratch.path() / "hidpi.png";
  std::optional<Screen> screen;
  const bool shown = x11::waitUntil(
      [&] {
        screen = sway->screenshot(shot) ? readScreen(shot) : std::nullopt;
        return screen && screen->width == physicalWidth && screen->at(left + 12, physicalHeight / 2) == kPaper;
      },
      std::chrono::milliseconds(8000));
  ASSERT_TRUE(shown) << readText(scratch.path() / "agent.log");
  // 480 logical points wide: the paper ends at the shield's edge.
  EXPECT_NE(screen->at(left - 12, physicalHeight / 2), kPaper);

  int sharpBlocks = 0;
  const int top = physicalHeight / 4, bottom = physicalHeight * 3 / 4;
  for (int y = top - top % 2; y + 1 < bottom; y += 2) {
    for (int x = left - left % 2; x + 1 < physicalWidth - left; x += 2) {
      const std::uint32_t a = screen->at(x, y), b = screen->at(x + 1, y);
      const int step = std::abs(static_cast<int>(a & 0xff) - static_cast<int>(b & 0xff));
      if (step > 96 && screen->at(x, y + 1) == a) ++sharpBlocks;
    }
  }
  EXPECT_GT(sharpBlocks, 50) << "the shield looks enlarged from scale 1; see " << shot;
}

}  // namespace
}  // namespace kovi::holds::wayland
