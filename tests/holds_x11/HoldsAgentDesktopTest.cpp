// GoogleTest first: Xlib defines macros (None, Bool) that clash with its names.
#include <gtest/gtest.h>

#include <X11/Xutil.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"
#include "tests/holds_x11/HoldsSnapshotNow.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds::x11::testing {
namespace {

using kovi::testing::readTestFile;
using holds::testing::HoldNow;
using holds::testing::snapshotHoldingNow;

constexpr std::chrono::milliseconds kSettle{8000};

// A private desktop with the agent's data and runtime directories, stand-in
// applications and the agent itself, all stopped when the test ends.
class HoldsDesktopTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateDesktop::isAvailable()) GTEST_SKIP() << "Xvfb and openbox are needed for the desktop tests";
    auto started = PrivateDesktop::start(scratch.path());
    ASSERT_TRUE(started.has_value()) << started.error();
    desktop.emplace(std::move(*started));
    std::filesystem::create_directories(scratch.path() / "runtime");
    std::filesystem::permissions(scratch.path() / "runtime", std::filesystem::perms::owner_all);
    snapshotFile = scratch.path() / "data" / "Kovi" / "Holds" / "holds.json";
    std::filesystem::create_directories(snapshotFile.parent_path());
    // The agent's data directory is a scratch one, and fontconfig looks for the
    // user's fonts in it: lend it this process's fonts, so the agent sets the
    // shield in the same faces the tests measure it with.
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    const std::filesystem::path fonts =
        (dataHome != nullptr && dataHome[0] == '/' ? std::filesystem::path(dataHome)
                                                   : std::filesystem::path(std::getenv("HOME")) / ".local" / "share") /
        "fonts";
    if (std::filesystem::exists(fonts)) std::filesystem::create_directory_symlink(fonts, scratch.path() / "data" / "fonts");
  }
  // After a failure, prints what the agent and the window manager said.
  void TearDown() override {
    if (!HasFailure()) return;
    std::cerr << "agent log:\n" << agentLog() << "openbox log:\n" << readTestFile(scratch.path() / "openbox.log");
  }

  struct StandIn {
    ChildProcess process;
    Window window;
  };
  // Starts a stand-in application and waits until its window is mapped.
  StandIn startApp(const std::string& instance, const std::string& className) {
    const auto output = scratch.path() / (instance + ".out");
    auto process = ChildProcess::start({KOVI_STAND_IN_APP, "--class", instance, "--name", className},
                                       {{"DISPLAY", desktop->displayName()}}, output, scratch.path() / (instance + ".err"));
    EXPECT_TRUE(process.has_value());
    std::optional<Window> window;
    settled([&] {
      std::ifstream in(output);
      std::string line;
      if (!std::getline(in, line) || line.empty()) return false;
      window = std::stoul(line, nullptr, 16);
      return true;
    });
    EXPECT_TRUE(window.has_value()) << instance << " did not map its window: " << readTestFile(output)
                                    << readTestFile(scratch.path() / (instance + ".err"));
    return {std::move(*process), window.value_or(None)};
  }
  // Writes the snapshot and starts `kovi-holds run`.
  ChildProcess startAgent(HoldNow hold, const std::filesystem::path& executable = KOVI_HOLDS_BINARY) {
    std::ofstream(snapshotFile) << snapshotHoldingNow(hold);
    auto agent = ChildProcess::start({executable.string(), "run"}, agentEnvironment(), std::nullopt,
                                     scratch.path() / ("agent" + std::to_string(agentCount++) + ".log"));
    EXPECT_TRUE(agent.has_value());
    return std::move(*agent);
  }
  std::map<std::string, std::string> agentEnvironment() const {
    return {{"DISPLAY", desktop->displayName()},
            {"TZ", "UTC"}, {"XDG_DATA_HOME", (scratch.path() / "data").string()},
            {"XDG_RUNTIME_DIR", (scratch.path() / "runtime").string()},
            {"PATH", (scratch.path() / "bin").string() + ":" + std::getenv("PATH")}};
  }
  // Waits (a few seconds at most) until the desktop shows `condition`.
  bool settled(const std::function<bool()>& condition) { return desktop->waitUntilSettled(condition, kSettle); }
  // The shield window while it is mapped.
  std::optional<Window> visibleShield() {
    for (Window window : desktop->clientsOfClass("KoviHolds")) {
      if (desktop->isViewable(window)) return window;
    }
    return std::nullopt;
  }
  bool waitForShield(bool visible) {
    return settled([&] { return visibleShield().has_value() == visible; });
  }
  bool waitForState(Window window, long state) {
    return settled([&] { return desktop->wmState(window) == state; });
  }
  std::string agentLog() const {
    std::string log;
    for (int index = 0; index < agentCount; ++index) log += readTestFile(scratch.path() / ("agent" + std::to_string(index) + ".log"));
    return log;
  }
  // Clicks at a point of the screen or presses a key, with xdotool.
  void click(int x, int y) { xdotool({"mousemove", std::to_string(x), std::to_string(y), "click", "1"}); }
  void pressKey(const char* key) { xdotool({"key", key}); }
  void xdotool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "xdotool");
    auto process = ChildProcess::start(arguments, {{"DISPLAY", desktop->displayName()}});
    ASSERT_TRUE(process.has_value()) << process.error();
    EXPECT_EQ(process->waitForExit(kSettle), 0);
  }

  // The centre of a shield button on the screen, from the same layout the agent uses.
  std::pair<int, int> buttonCentre(Window shield, std::size_t index) {
    const MacHoldsShieldView view{.due = MacHoldsDue::sleep(Date::now()), .appName = "Discord", .openKovi = {},
                                  .back = {}, .catStage = std::nullopt};
    const auto layout = desktop::CairoShieldPainter(PurrlFontStore()).layout(view, Calendar::current());
    const auto& frame = layout.buttons[index].frame;
    const auto [x, y] = desktop->screenPosition(shield);
    return {x + static_cast<int>(frame.x + frame.width / 2), y + static_cast<int>(frame.y + frame.height / 2)};
  }

  kovi::testing::TemporaryDirectory scratch;
  std::optional<PrivateDesktop> desktop;
  std::filesystem::path snapshotFile;
  int agentCount = 0;
};

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

TEST_F(HoldsDesktopTest, BackToFocusAndOpenKoviWorkByClickAndReturnByKey) {
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
