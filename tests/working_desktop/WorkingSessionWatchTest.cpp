#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <thread>

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

using holds::x11::ChildProcess;
using holds::x11::PrivateDesktop;
using holds::x11::waitUntil;
using namespace std::chrono_literals;

constexpr const char* kCounting = "active: Mac’in kaydettiği süre sayılıyor.";
constexpr const char* kPossibleIdle =
    "possibleIdle: Şu an çalışma sayılmıyor. Devam ettiğinde yalnızca yeni doğrulanan süre eklenir.";
constexpr const char* kSuspended = "suspended: Doğrulanamıyor";
constexpr const char* kWaitingForMac = "preparing: Mac hazır olunca çalışma başlar. Henüz süre sayılmıyor.";

// A desktop with a private system bus, and `kovi working session watch` on
// it under rules that idle after two seconds and need no protection this
// desktop cannot give.
class WorkingSessionWatchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateDesktop::isAvailable() || !std::filesystem::exists("/usr/bin/dbus-daemon")) {
      GTEST_SKIP() << "Xvfb, openbox and dbus-daemon are needed for the desktop tests";
    }
    auto started = PrivateDesktop::start(scratch.path());
    ASSERT_TRUE(started.has_value()) << started.error();
    desktop.emplace(std::move(*started));
    busAddress = "unix:path=" + (scratch.path() / "system_bus").string();
    rulesFile = scratch.path() / "rules.json";
    nlohmann::json rules = nlohmann::json::parse(testing::testDataFile("working", "daily-rules.json"));
    rules["verification"]["idleThresholdSeconds"] = 2;
    rules["economics"]["funding"] = "free";
    rules["economics"]["contributionAtomic"] = "0";
    rules["blocking"]["mac"]["apps"]["required"] = false;
    std::ofstream(rulesFile) << rules.dump();
  }

  void startStandInLogind() {
    bus.emplace(ChildProcess::start({"dbus-daemon", "--session", "--nofork", "--address=" + busAddress}).value());
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(scratch.path() / "system_bus"); }, 5s));
    const auto ready = scratch.path() / "logind.out";
    logind.emplace(ChildProcess::start({KOVI_STAND_IN_LOGIND, lockFlag().string()},
                                       {{"DBUS_SYSTEM_BUS_ADDRESS", busAddress}}, ready)
                       .value());
    ASSERT_TRUE(waitUntil([&] { return testing::readTestFile(ready).find("ready") != std::string::npos; }, 5s));
  }

  void startWatch() {
    watch.emplace(ChildProcess::start({KOVI_TOOL, "working", "session", "watch", "--rules", rulesFile.string(),
                                       "--session", "s1", "--device", "mac-1", "--poll-ms", "100"},
                                      {{"DISPLAY", desktop->displayName()}, {"DBUS_SYSTEM_BUS_ADDRESS", busAddress}},
                                      scratch.path() / "watch.out", scratch.path() / "watch.err")
                      .value());
  }

  bool statusShown(const std::string& line, std::chrono::milliseconds timeout = 5s) {
    return waitUntil([&] { return statusLines().find(line) != std::string::npos; }, timeout);
  }
  std::string statusLines() const { return testing::readTestFile(scratch.path() / "watch.err"); }

  void moveThePointer(int step) {
    const std::string x = std::to_string(100 + (step % 7) * 10);
    auto xdotool = ChildProcess::start({"xdotool", "mousemove", x, "200"}, {{"DISPLAY", desktop->displayName()}});
    ASSERT_TRUE(xdotool.has_value());
    ASSERT_EQ(xdotool->waitForExit(5s), 0);
  }

  // Stops the watch as Ctrl-C would and returns the snapshot it printed.
  nlohmann::json stopWatch() {
    kill(watch->pid(), SIGINT);
    EXPECT_EQ(watch->waitForExit(5s), 0) << statusLines();
    return nlohmann::json::parse(testing::readTestFile(scratch.path() / "watch.out"));
  }

  std::filesystem::path lockFlag() const { return scratch.path() / "locked"; }

  kovi::testing::TemporaryDirectory scratch;
  std::optional<PrivateDesktop> desktop;
  std::string busAddress;
  std::filesystem::path rulesFile;
  std::optional<ChildProcess> bus;
  std::optional<ChildProcess> logind;
  std::optional<ChildProcess> watch;
};

TEST_F(WorkingSessionWatchTest, InputKeepsTheSessionActiveAndItsAbsenceTurnsToPossibleIdle) {
  ASSERT_NO_FATAL_FAILURE(startStandInLogind());
  startWatch();
  ASSERT_TRUE(statusShown(kCounting)) << statusLines();
  // Input every 300 ms for three seconds, longer than the idle threshold.
  for (int step = 0; step < 10; ++step) {
    ASSERT_NO_FATAL_FAILURE(moveThePointer(step));
    std::this_thread::sleep_for(300ms);
  }
  EXPECT_EQ(statusLines().find("possibleIdle"), std::string::npos) << statusLines();
  // No input past the threshold.
  ASSERT_TRUE(statusShown(kPossibleIdle)) << statusLines();
  const nlohmann::json snapshot = stopWatch();
  EXPECT_EQ(snapshot["sessionID"], "s1");
  EXPECT_GE(snapshot["candidateActiveMS"].get<std::int64_t>(), 4'000);
  EXPECT_GT(snapshot["idleMS"].get<std::int64_t>(), 0);
  EXPECT_EQ(snapshot["unverifiedMS"], 0);
}

TEST_F(WorkingSessionWatchTest, ALockReportedByLogindSuspendsTheSession) {
  ASSERT_NO_FATAL_FAILURE(startStandInLogind());
  startWatch();
  ASSERT_TRUE(statusShown(kCounting)) << statusLines();
  std::ofstream(lockFlag()) << "locked";
  ASSERT_TRUE(statusShown(kSuspended)) << statusLines();
  const nlohmann::json snapshot = stopWatch();
  EXPECT_EQ(snapshot["state"], "suspended");
  EXPECT_EQ(snapshot["suspensionReason"], "locked");
}

TEST_F(WorkingSessionWatchTest, WithoutLogindTheLockIsUnknownAndTheSessionWaits) {
  startWatch();  // the bus address names a socket nobody listens on
  ASSERT_TRUE(statusShown(kWaitingForMac)) << statusLines();
  EXPECT_NE(statusLines().find("unavailable: logind"), std::string::npos);
  const nlohmann::json snapshot = stopWatch();
  EXPECT_EQ(snapshot["state"], "preparing");
  EXPECT_EQ(snapshot["elapsedMS"], 0);
}

}  // namespace
}  // namespace kovi
