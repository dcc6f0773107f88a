#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "KoviMacHolds/platform/wayland/demo/PrivateKWin.h"
#include "tests/holds_x11/HoldsSnapshotNow.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds::wayland {
namespace {

using kovi::testing::readTestFile;
using holds::testing::HoldNow;
using holds::testing::snapshotHoldingNow;

constexpr std::chrono::milliseconds kSettle{10000};

// The .desktop file the package installs, naming `binary` instead of the
// installed path: KWin grants its window list by that file.
std::string packagedDesktopEntryFor(const std::filesystem::path& binary) {
  std::string entry = readTestFile(KOVI_HOLDS_DESKTOP_ENTRY);
  const std::string installed = "/usr/bin/kovi-holds";
  const auto at = entry.find("Exec=" + installed);
  if (at != std::string::npos) entry.replace(at + 5, installed.size(), std::filesystem::canonical(binary).string());
  return entry;
}

class HoldsKWinTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto reason = PrivateKWin::unavailableReason()) GTEST_SKIP() << *reason;
    std::filesystem::create_directories(scratch.path() / "data" / "Kovi" / "Holds");
    auto started = PrivateKWin::start(scratch.path(), {packagedDesktopEntryFor(KOVI_HOLDS_BINARY)});
    // A machine with kwin_wayland that cannot run it headless (no virtual
    // framebuffer support, no Qt platform) is not a fault of the agent.
    if (!started) GTEST_SKIP() << "kwin_wayland --virtual cannot run here: " << started.error();
    kwin.emplace(std::move(*started));
  }

  void TearDown() override {
    if (HasFailure()) std::cerr << "agent log:\n" << agentLog() << "KWin log:\n" << readTestFile(scratch.path() / "kwin.log");
  }

  ChildProcess startAgent(HoldNow hold, const std::filesystem::path& binary = KOVI_HOLDS_BINARY) {
    std::ofstream(scratch.path() / "data" / "Kovi" / "Holds" / "holds.json") << snapshotHoldingNow(hold);
    auto agent = kwin->startProgram({binary.string(), "run"},
                                    {{"TZ", "UTC"}, {"XDG_DATA_HOME", (scratch.path() / "data").string()}},
                                    scratch.path() / "agent.log");
    EXPECT_TRUE(agent.has_value()) << agent.error();
    return std::move(*agent);
  }

  ChildProcess startApp(const std::string& appId) {
    auto app = kwin->startStandIn(appId);
    EXPECT_TRUE(app.has_value()) << app.error();
    return std::move(*app);
  }

  bool logShows(const std::string& text) {
    return x11::waitUntil([&] { return agentLog().find(text) != std::string::npos; }, kSettle);
  }
  std::string agentLog() const { return readTestFile(scratch.path() / "agent.log"); }

  kovi::testing::TemporaryDirectory scratch;
  std::optional<PrivateKWin> kwin;
};

// "hid" is logged only once KWin has reported the window minimised through
// its window list, so these lines are KWin's word, not the agent's hope.
TEST_F(HoldsKWinTest, NativeHeldAppIsMinimisedAndASparedOneIsLeftAlone) {
  auto browser = startApp("firefox");
  auto agent = startAgent(HoldNow::sleep);
  ASSERT_TRUE(logShows("hold sleep until")) << agentLog();
  EXPECT_EQ(agentLog().find("note:"), std::string::npos) << "the agent fell back: " << agentLog();

  auto discord = startApp("discord");
  EXPECT_TRUE(logShows("— hid Discord")) << agentLog();
  EXPECT_EQ(agentLog().find("did not hide"), std::string::npos) << agentLog();
  EXPECT_EQ(agentLog().find("hid Firefox"), std::string::npos) << agentLog();
  EXPECT_TRUE(agent.isRunning());
}

TEST_F(HoldsKWinTest, AllowListHoldMinimisesEverythingButTheAllowedApp) {
  auto agent = startAgent(HoldNow::study);
  ASSERT_TRUE(logShows("hold study until")) << agentLog();
  auto browser = startApp("firefox");
  std::this_thread::sleep_for(std::chrono::milliseconds(500));  // every chance to get it wrong
  auto game = startApp("steam");
  EXPECT_TRUE(logShows("— hid Steam")) << agentLog();
  EXPECT_EQ(agentLog().find("hid Firefox"), std::string::npos) << agentLog();
}

TEST_F(HoldsKWinTest, ProgramWithoutItsDesktopFileIsRefusedTheWindowListAndSaysSo) {
  // The same agent at a path no .desktop file names.
  const auto copy = scratch.path() / "unlisted" / "kovi-holds";
  std::filesystem::create_directories(copy.parent_path());
  std::filesystem::copy_file(KOVI_HOLDS_BINARY, copy);
  std::filesystem::permissions(copy.parent_path(), std::filesystem::perms::all);
  auto agent = startAgent(HoldNow::sleep, copy);
  EXPECT_TRUE(logShows("note: KWin did not grant org_kde_plasma_window_management")) << agentLog();
  EXPECT_TRUE(logShows("XWayland")) << agentLog();
}

}  // namespace
}  // namespace kovi::holds::wayland
