#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"
#include "tests/holds_x11/HoldsSnapshotNow.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi::holds::x11::testing {

using holds::testing::HoldNow;
using holds::testing::snapshotHoldingNow;

// A private desktop with the agent's data and runtime directories, stand-in
// applications and the agent itself, all stopped when the test ends.
class HoldsDesktopTest : public ::testing::Test {
 protected:
  void SetUp() override;
  // After a failure, prints what the agent and the window manager said.
  void TearDown() override;

  struct StandIn {
    ChildProcess process;
    Window window;
  };
  // Starts a stand-in application and waits until its window is mapped.
  StandIn startApp(const std::string& instance, const std::string& className);
  // Writes the snapshot and starts `kovi-holds run`.
  ChildProcess startAgent(HoldNow hold, const std::filesystem::path& executable = KOVI_HOLDS_BINARY);
  std::map<std::string, std::string> agentEnvironment() const;

  // Waits (a few seconds at most) until the desktop shows `condition`.
  bool settled(const std::function<bool()>& condition);
  // The shield window while it is mapped.
  std::optional<Window> visibleShield();
  bool waitForShield(bool visible);
  bool waitForState(Window window, long state);
  std::string agentLog() const;
  // Clicks at a point of the screen with xdotool.
  void click(int x, int y);
  void pressKey(const char* key);

  kovi::testing::TemporaryDirectory scratch;
  std::optional<PrivateDesktop> desktop;
  std::filesystem::path snapshotFile;
  int agentCount = 0;
};

}  // namespace kovi::holds::x11::testing
