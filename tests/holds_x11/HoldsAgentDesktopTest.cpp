// GoogleTest first: Xlib defines macros (None, Bool) that clash with its names.
#include <gtest/gtest.h>

#include <X11/Xutil.h>
#include <thread>

#include <filesystem>
#include <fstream>

#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "tests/holds_x11/HoldsDesktopFixture.h"

namespace kovi::holds::x11::testing {
namespace {

TEST_F(HoldsDesktopTest, HeldWindowComingToTheFrontIsIconifiedAndTheShieldShown) {
  auto browser = startApp("Navigator", "firefox");
  auto agent = startAgent(HoldNow::sleep);
  // The browser is not held at night, so nothing happens yet.
  ASSERT_TRUE(settled([&] { return agentLog().find("hold sleep until") != std::string::npos; }));
  EXPECT_EQ(desktop->wmState(browser.window), NormalState);
  EXPECT_FALSE(visibleShield());

  auto discord = startApp("discord", "discord");
  EXPECT_TRUE(waitForState(discord.window, IconicState));
  EXPECT_TRUE(waitForShield(true));
  EXPECT_EQ(desktop->wmState(browser.window), NormalState);
  EXPECT_NE(agentLog().find("— hid Discord"), std::string::npos) << agentLog();

  // The shield is a dialog kept above the others and out of the task bar.
  const Window shield = *visibleShield();
  const auto& atoms = desktop->display().atoms();
  const auto types = desktop->display().atomListProperty(shield, atoms.netWmWindowType);
  EXPECT_EQ(types, std::vector<Atom>{atoms.netWmWindowTypeDialog});
  const auto states = desktop->display().atomListProperty(shield, atoms.netWmState);
  EXPECT_NE(std::ranges::find(states, atoms.netWmStateAbove), states.end());
  EXPECT_NE(std::ranges::find(states, atoms.netWmStateSkipTaskbar), states.end());
  EXPECT_TRUE(agent.isRunning());
}

TEST_F(HoldsDesktopTest, SparedAppInFrontHidesTheShieldAndSwitchingBackShowsItAgain) {
  auto files = startApp("thunar", "Thunar");
  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord", "discord");
  ASSERT_TRUE(waitForState(discord.window, IconicState));
  ASSERT_TRUE(waitForShield(true));

  desktop->activate(files.window);
  EXPECT_TRUE(waitForShield(false));
  EXPECT_EQ(desktop->wmState(files.window), NormalState);

  // Bringing the held window back un-iconifies it; the agent hides it again.
  desktop->activate(discord.window);
  EXPECT_TRUE(waitForShield(true));
  EXPECT_TRUE(waitForState(discord.window, IconicState));
}

TEST_F(HoldsDesktopTest, AllowListHoldLeavesAnAllowedAppAloneAndHidesTheRest) {
  auto agent = startAgent(HoldNow::study);
  ASSERT_TRUE(settled([&] { return agentLog().find("hold study until") != std::string::npos; }))
      << agentLog();

  auto browser = startApp("Navigator", "firefox");
  ASSERT_TRUE(settled([&] { return desktop->activeWindow() == browser.window; }));
  // Give the agent every chance to get it wrong.
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(desktop->wmState(browser.window), NormalState);
  EXPECT_FALSE(visibleShield());

  auto game = startApp("steam", "Steam");
  EXPECT_TRUE(waitForState(game.window, IconicState));
  EXPECT_TRUE(waitForShield(true));
  EXPECT_EQ(desktop->wmState(browser.window), NormalState);
}

class ShieldButtonsTest : public HoldsDesktopTest {
 protected:
  // The centre of a shield button on the screen, from the same layout the agent uses.
  std::pair<int, int> buttonCentre(Window shield, std::size_t index) {
    const MacHoldsShieldView view{.due = MacHoldsDue::sleep(Date::now()), .appName = "Discord", .openKovi = {},
                                  .back = {}, .catStage = std::nullopt};
    const auto layout = desktop::CairoShieldPainter(PurrlFontStore()).layout(view, Calendar::current());
    const auto& frame = layout.buttons[index].frame;
    const auto [x, y] = desktop->screenPosition(shield);
    return {x + static_cast<int>(frame.x + frame.width / 2), y + static_cast<int>(frame.y + frame.height / 2)};
  }
};

TEST_F(ShieldButtonsTest, BackToFocusAndOpenKoviWorkByClickAndReturnByKey) {
  // A stand-in for the main app's launcher, which the agent finds on PATH.
  const auto opened = scratch.path() / "kovi-app-was-opened";
  std::filesystem::create_directories(scratch.path() / "bin");
  const auto launcher = scratch.path() / "bin" / "kovi-app";
  std::ofstream(launcher) << "#!/bin/sh\ntouch '" << opened.string() << "'\n";
  std::filesystem::permissions(launcher, std::filesystem::perms::owner_all);

  auto agent = startAgent(HoldNow::sleep);
  auto discord = startApp("discord", "discord");
  ASSERT_TRUE(waitForShield(true));

  auto [backX, backY] = buttonCentre(*visibleShield(), 1);
  click(backX, backY);
  EXPECT_TRUE(waitForShield(false));
  EXPECT_EQ(desktop->wmState(discord.window), IconicState);  // it stays hidden
  EXPECT_FALSE(std::filesystem::exists(opened));

  desktop->activate(discord.window);
  ASSERT_TRUE(waitForShield(true));
  auto [openX, openY] = buttonCentre(*visibleShield(), 0);
  click(openX, openY);
  EXPECT_TRUE(waitForShield(false));
  EXPECT_TRUE(settled([&] { return std::filesystem::exists(opened); }));

  desktop->activate(discord.window);
  ASSERT_TRUE(waitForShield(true));
  ASSERT_TRUE(settled([&] { return desktop->activeWindow() == visibleShield(); }));
  pressKey("Return");
  EXPECT_TRUE(waitForShield(false));
}

TEST_F(HoldsDesktopTest, TwoAgentsStartedTogetherLeaveExactlyOne) {
  auto first = startAgent(HoldNow::sleep);
  auto second = startAgent(HoldNow::sleep);
  ASSERT_TRUE(settled([&] { return !first.isRunning() || !second.isRunning(); }));
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const bool firstRuns = first.isRunning();
  EXPECT_NE(firstRuns, second.isRunning());
  EXPECT_EQ((firstRuns ? second : first).waitForExit(std::chrono::milliseconds(0)), 0);
  EXPECT_NE(agentLog().find("exit: another copy of the agent is running"), std::string::npos) << agentLog();
}

TEST_F(HoldsDesktopTest, ReplacedExecutableExitsWith75) {
  const auto executable = scratch.path() / "kovi-holds";
  std::filesystem::copy_file(KOVI_HOLDS_BINARY, executable);
  auto agent = startAgent(HoldNow::sleep, executable);
  ASSERT_TRUE(settled([&] { return agentLog().find("hold sleep") != std::string::npos; }));

  // An update installs the new file beside the old one and renames it over.
  std::filesystem::copy_file(KOVI_HOLDS_BINARY, scratch.path() / "kovi-holds.new");
  std::filesystem::rename(scratch.path() / "kovi-holds.new", executable);
  EXPECT_EQ(agent.waitForExit(std::chrono::milliseconds(7000)), 75) << agentLog();
}

}  // namespace
}  // namespace kovi::holds::x11::testing
