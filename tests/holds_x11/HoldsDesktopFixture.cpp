#include "tests/holds_x11/HoldsDesktopFixture.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <iostream>
#include <sstream>

namespace kovi::holds::x11::testing {

namespace {

constexpr std::chrono::milliseconds kSettle{8000};

std::string readText(const std::filesystem::path& file) {
  std::ifstream in(file);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

void HoldsDesktopTest::SetUp() {
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

void HoldsDesktopTest::TearDown() {
  if (!HasFailure()) return;
  std::cerr << "agent log:\n" << agentLog() << "openbox log:\n" << readText(scratch.path() / "openbox.log");
}

std::map<std::string, std::string> HoldsDesktopTest::agentEnvironment() const {
  return {{"DISPLAY", desktop->displayName()},
          {"TZ", "UTC"},
          {"XDG_DATA_HOME", (scratch.path() / "data").string()},
          {"XDG_RUNTIME_DIR", (scratch.path() / "runtime").string()},
          {"PATH", (scratch.path() / "bin").string() + ":" + std::getenv("PATH")}};
}

HoldsDesktopTest::StandIn HoldsDesktopTest::startApp(const std::string& instance, const std::string& className) {
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
  EXPECT_TRUE(window.has_value()) << instance << " did not map its window: " << readText(output)
                                  << readText(scratch.path() / (instance + ".err"));
  return {std::move(*process), window.value_or(None)};
}

ChildProcess HoldsDesktopTest::startAgent(HoldNow hold, const std::filesystem::path& executable) {
  std::ofstream(snapshotFile) << snapshotHoldingNow(hold);
  auto agent = ChildProcess::start({executable.string(), "run"}, agentEnvironment(), std::nullopt,
                                   scratch.path() / ("agent" + std::to_string(agentCount++) + ".log"));
  EXPECT_TRUE(agent.has_value());
  return std::move(*agent);
}

bool HoldsDesktopTest::settled(const std::function<bool()>& condition) {
  return desktop->waitUntilSettled(condition, kSettle);
}

std::optional<Window> HoldsDesktopTest::visibleShield() {
  for (Window window : desktop->clientsOfClass("KoviHolds")) {
    if (desktop->isViewable(window)) return window;
  }
  return std::nullopt;
}

bool HoldsDesktopTest::waitForShield(bool visible) {
  return settled([&] { return visibleShield().has_value() == visible; });
}

bool HoldsDesktopTest::waitForState(Window window, long state) {
  return settled([&] { return desktop->wmState(window) == state; });
}

std::string HoldsDesktopTest::agentLog() const {
  std::string log;
  for (int index = 0; index < agentCount; ++index) log += readText(scratch.path() / ("agent" + std::to_string(index) + ".log"));
  return log;
}

void HoldsDesktopTest::click(int x, int y) {
  auto xdotool = ChildProcess::start({"xdotool", "mousemove", std::to_string(x), std::to_string(y), "click", "1"},
                                     {{"DISPLAY", desktop->displayName()}});
  ASSERT_TRUE(xdotool.has_value()) << xdotool.error();
  EXPECT_EQ(xdotool->waitForExit(kSettle), 0);
}

void HoldsDesktopTest::pressKey(const char* key) {
  auto xdotool = ChildProcess::start({"xdotool", "key", key}, {{"DISPLAY", desktop->displayName()}});
  ASSERT_TRUE(xdotool.has_value()) << xdotool.error();
  EXPECT_EQ(xdotool->waitForExit(kSettle), 0);
}

}  // namespace kovi::holds::x11::testing
