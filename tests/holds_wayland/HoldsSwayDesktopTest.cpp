#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "KoviMacHolds/MacHoldsShieldLayout.h"
#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "KoviMacHolds/platform/wayland/demo/PrivateSway.h"
#include "tests/holds_x11/HoldsSnapshotNow.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds::wayland {
namespace {

using kovi::testing::readTestFile;
using holds::testing::HoldNow;
using holds::testing::snapshotHoldingNow;

constexpr std::chrono::milliseconds kSettle{8000};
// The shield's paper, which nothing else on the headless desktop is painted in.
constexpr SwayColor kPaper{245, 240, 234};
constexpr std::uint32_t kPaperPixel = 0xf5f0ea;  // the same, as a screenshot's 0xRRGGBB

class HoldsSwayTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateSway::isAvailable()) GTEST_SKIP() << "sway, foot, grim and wtype are needed for the Wayland desktop tests";
    std::filesystem::create_directories(scratch.path() / "data" / "Kovi" / "Holds");
    auto started = PrivateSway::start(scratch.path());
    ASSERT_TRUE(started.has_value()) << started.error() << readTestFile(scratch.path() / "sway.log");
    sway.emplace(std::move(*started));
  }

  void TearDown() override {
    if (HasFailure()) std::cerr << "agent log:\n" << agentLog() << "sway log:\n" << readTestFile(scratch.path() / "sway.log");
  }

  ChildProcess startAgent(HoldNow hold) {
    const auto snapshot = scratch.path() / "data" / "Kovi" / "Holds" / "holds.json";
    std::ofstream(snapshot) << snapshotHoldingNow(hold);
    auto agent = sway->startProgram({KOVI_HOLDS_BINARY, "run"},
                                    {{"TZ", "UTC"}, {"XDG_DATA_HOME", (scratch.path() / "data").string()}},
                                    std::nullopt, scratch.path() / "agent.log");
    EXPECT_TRUE(agent.has_value()) << agent.error();
    return std::move(*agent);
  }

  ChildProcess startApp(const std::string& appId) {
    auto app = sway->startStandIn(appId);
    EXPECT_TRUE(app.has_value()) << app.error();
    EXPECT_TRUE(settled([&] { return sway->window(appId).has_value(); })) << appId << " did not map a window";
    return std::move(*app);
  }

  bool settled(const std::function<bool()>& condition) { return x11::waitUntil(condition, kSettle); }
  std::string agentLog() const { return readTestFile(scratch.path() / "agent.log"); }

  bool hidden(const std::string& appId) {
    const auto window = sway->window(appId);
    return window && window->inScratchpad;
  }
  // Just inside the left edge of the centred shield, level with the centre,
  // where no text or picture is drawn.
  bool shieldShown() {
    const int x = (PrivateSway::width - static_cast<int>(MacHoldsShieldLayout::width)) / 2 + 6;
    const auto color = sway->colorAt(x, PrivateSway::height / 2);
    return color && *color == kPaper;
  }
  bool waitForShield(bool shown) {
    return settled([&] { return shieldShown() == shown; });
  }

  // The centre of a shield button on the output: the panel is centred, and
  // laid out by the painter the agent uses.
  std::pair<int, int> buttonCentre(std::size_t index) {
    const MacHoldsShieldView view{.due = MacHoldsDue::sleep(Date::now()), .appName = "Discord", .openKovi = {},
                                  .back = {}, .catStage = std::nullopt};
    const auto layout = desktop::CairoShieldPainter(PurrlFontStore()).layout(view, Calendar::current());
    const int left = (PrivateSway::width - static_cast<int>(std::ceil(layout.size.width))) / 2;
    const int top = (PrivateSway::height - static_cast<int>(std::ceil(layout.size.height))) / 2;
    const auto& frame = layout.buttons[index].frame;
    return {left + static_cast<int>(frame.x + frame.width / 2), top + static_cast<int>(frame.y + frame.height / 2)};
  }

  kovi::testing::TemporaryDirectory scratch;
  std::optional<PrivateSway> sway;
};

TEST_F(HoldsSwayTest, HeldAppComingToTheFrontGoesToTheScratchpadUnderTheShield) {
  auto browser = startApp("firefox");
  auto agent = startAgent(HoldNow::sleep);
  // The browser is not held at night, so nothing happens yet.
  ASSERT_TRUE(settled([&] { return agentLog().find("hold sleep until") != std::string::npos; })) << agentLog();
  EXPECT_FALSE(hidden("firefox"));
  EXPECT_FALSE(shieldShown());

  auto discord = startApp("discord");
  EXPECT_TRUE(settled([&] { return hidden("discord"); }));
  EXPECT_TRUE(waitForShield(true));
  EXPECT_FALSE(hidden("firefox"));
  EXPECT_NE(agentLog().find("— hid Discord"), std::string::npos) << agentLog();
  EXPECT_TRUE(agent.isRunning());
}

TEST_F(HoldsSwayTest, SparedAppInFrontHidesTheShieldAndShowingTheHeldOneAgainReHidesIt) {
  auto browser = startApp("firefox");
  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord");
  ASSERT_TRUE(settled([&] { return hidden("discord"); }));
  ASSERT_TRUE(waitForShield(true));

  // The file manager, one of the desktop's own parts, comes to the front.
  auto files = startApp("org.gnome.Nautilus");
  EXPECT_TRUE(waitForShield(false));
  EXPECT_FALSE(hidden("org.gnome.Nautilus"));

  // Taking the held application out of the scratchpad brings it to the
  // front; the agent puts it back.
  ASSERT_TRUE(sway->command("[app_id=\"discord\"] scratchpad show").has_value());
  EXPECT_TRUE(settled([&] { return hidden("discord"); }));
  EXPECT_TRUE(waitForShield(true));
}

TEST_F(HoldsSwayTest, AllowListHoldLeavesAnAllowedAppAloneAndHidesTheRest) {
  auto agent = startAgent(HoldNow::study);
  ASSERT_TRUE(settled([&] { return agentLog().find("hold study until") != std::string::npos; })) << agentLog();

  auto browser = startApp("firefox");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));  // every chance to get it wrong
  EXPECT_FALSE(hidden("firefox"));
  EXPECT_FALSE(shieldShown());

  auto game = startApp("steam");
  EXPECT_TRUE(settled([&] { return hidden("steam"); }));
  EXPECT_TRUE(waitForShield(true));
  EXPECT_FALSE(hidden("firefox"));
}

TEST_F(HoldsSwayTest, BackToFocusByAClickOrReturnPutsTheShieldAwayAndTheHeldAppStaysHidden) {
  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord");
  ASSERT_TRUE(waitForShield(true));

  const auto [x, y] = buttonCentre(1);
  const auto clicked = sway->click(x, y);
  ASSERT_TRUE(clicked.has_value()) << clicked.error();
  EXPECT_TRUE(waitForShield(false));
  EXPECT_TRUE(hidden("discord"));

  ASSERT_TRUE(sway->command("[app_id=\"discord\"] scratchpad show").has_value());
  ASSERT_TRUE(waitForShield(true));
  const auto pressed = sway->pressKey("Return");
  ASSERT_TRUE(pressed.has_value()) << pressed.error();
  EXPECT_TRUE(waitForShield(false));
  EXPECT_TRUE(hidden("discord"));
}

TEST_F(HoldsSwayTest, AgentExitsWithZeroWhenTheSnapshotGoes) {
  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord");
  ASSERT_TRUE(waitForShield(true));
  std::filesystem::remove(scratch.path() / "data" / "Kovi" / "Holds" / "holds.json");
  EXPECT_EQ(agent.waitForExit(std::chrono::milliseconds(7000)), 0) << agentLog();
  EXPECT_TRUE(waitForShield(false));
}

constexpr int kScale = 2;

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
TEST_F(HoldsSwayTest, ShieldKeepsItsLogicalSizeAndIsDrawnWithTheOutputsPixelsAtScaleTwo) {
  const int physicalWidth = PrivateSway::width * kScale, physicalHeight = PrivateSway::height * kScale;
  ASSERT_TRUE(sway->command("output HEADLESS-1 mode " + std::to_string(physicalWidth) + "x" +
                            std::to_string(physicalHeight) + " scale " + std::to_string(kScale))
                  .has_value());
  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord");

  const int left = (physicalWidth - static_cast<int>(MacHoldsShieldLayout::width) * kScale) / 2;
  const auto shot = scratch.path() / "hidpi.png";
  std::optional<Screen> screen;
  const bool shown = x11::waitUntil(
      [&] {
        screen = sway->screenshot(shot) ? readScreen(shot) : std::nullopt;
        return screen && screen->width == physicalWidth && screen->at(left + 12, physicalHeight / 2) == kPaperPixel;
      },
      kSettle);
  ASSERT_TRUE(shown) << agentLog();
  // 480 logical points wide: the paper ends at the shield's edge.
  EXPECT_NE(screen->at(left - 12, physicalHeight / 2), kPaperPixel);

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
