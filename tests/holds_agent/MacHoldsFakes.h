#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/platform/MacLaunchIdentity.h"
#include "KoviMacHolds/platform/MacRunLoop.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/MacWorkspace.h"
#include "tests/support/TemporaryDirectory.h"

// In-memory stand-ins for the platform, recording what the agent asked of it.
namespace kovi::holds::testing {

class FakeWorkspace final : public MacWorkspace {
 public:
  std::vector<MacRunningApplication> applications;
  std::optional<pid_t> front;
  std::set<pid_t> refusesToHide;
  std::vector<pid_t> hidden;  // every successful hide, in order
  int openMainAppCount = 0;
  bool anotherAgent = false;
  std::set<std::string> desktop{"x11:thunar"};

  // Adds a regular application and returns its process identifier.
  pid_t launch(std::string bundleIdentifier, std::string name,
               MacActivationPolicy policy = MacActivationPolicy::regular);
  // An application that is already in front when the story begins (no notification).
  pid_t launchInFront(std::string bundleIdentifier, std::string name);
  // Brings the application to the front and tells the observers.
  void activate(pid_t pid);
  void terminate(pid_t pid);
  void wake();
  std::size_t observerCount(MacWorkspaceEvent event) const;

  std::vector<MacRunningApplication> runningApplications() override { return applications; }
  std::optional<MacRunningApplication> frontmostApplication() override;
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override;
  bool hide(const MacRunningApplication& application) override;
  void openMainApp() override { ++openMainAppCount; }
  bool anotherAgentIsRunning() override { return anotherAgent; }
  std::set<std::string> desktopIdentifiers() const override { return desktop; }
  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override;
  void removeObserver(MacObserverToken token) override { observers_.erase(token); }

 private:
  void post(MacWorkspaceEvent event, std::optional<pid_t> pid);
  std::map<MacObserverToken, std::pair<MacWorkspaceEvent, std::function<void(const MacWorkspaceNotification&)>>>
      observers_;
  MacObserverToken nextToken_ = 1;
  pid_t nextPid_ = 1000;
};

class FakeRunLoop final : public MacRunLoop {
 public:
  std::map<MacTimerToken, std::pair<std::chrono::milliseconds, std::function<void()>>> timers;
  std::optional<int> status;

  MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
  void invalidateTimer(MacTimerToken token) override { timers.erase(token); }
  void exit(int exitStatus) override {
    if (!status) status = exitStatus;
  }
  bool hasExited() const override { return status.has_value(); }
  int run() override { return status.value_or(-1); }
  // One tick of every timer, as the loop would deliver after the interval.
  void tick();

 private:
  MacTimerToken nextToken_ = 1;
};

class FakeLaunchIdentity final : public MacLaunchIdentity {
 public:
  std::optional<MacFileIdentity> identity = MacFileIdentity{1, 100};
  std::optional<MacFileIdentity> executableIdentity() override { return identity; }
};

// What every shield panel the guard created was asked to do.
struct FakeShieldState {
  int created = 0;
  std::optional<MacHoldsShieldView> content;
  int contentUpdates = 0;
  int broughtForward = 0;
  bool visible = false;
};

class FakeShieldPanel final : public MacShieldPanel {
 public:
  explicit FakeShieldPanel(std::shared_ptr<FakeShieldState> state) : state_(std::move(state)) {}
  void setContent(MacHoldsShieldView view) override;
  void bringForward() override;
  void orderOut() override { state_->visible = false; }
  bool isVisible() const override { return state_->visible; }

 private:
  std::shared_ptr<FakeShieldState> state_;
};

// A whole agent over the fakes, with its snapshot in a temporary directory
// and its clock fixed in Europe/Istanbul.
struct FakeAgent {
  FakeWorkspace workspace;
  FakeRunLoop runLoop;
  FakeLaunchIdentity launchIdentity;
  std::shared_ptr<FakeShieldState> shield = std::make_shared<FakeShieldState>();
  kovi::testing::TemporaryDirectory directory;
  std::filesystem::path file = directory.path() / "Kovi" / "Holds" / "holds.json";
  std::vector<std::string> log;
  Date now;

  MacHoldsPlatform platform();
  MacHoldsClock clock();
  MacHoldsAgentOptions options();
  void writeSnapshot(const std::string& json);
  // Starts the agent as the delegate does at launch.
  std::unique_ptr<MacHoldsAppDelegate> launch();
  // Sets the clock, writes the snapshot and starts the agent.
  std::unique_ptr<MacHoldsAppDelegate> launchAt(const char* localTime, const std::string& json);
};

// holds.json texts around the exam week 2026-11-20 to 2026-11-26 (study
// blocks 09:00–11:30 and 14:00–16:30, nights 23:00–07:00, 45 minutes of Social).
std::string examWeekJson(bool keepCommunication = true, bool stopped = false,
                         std::optional<std::string> allowance = std::nullopt);
// Only an everyday night, 23:00–07:00.
std::string everydaySleepJson();

Date istanbul(const char* localTime);  // "2026-11-23T10:00"
Calendar istanbulCalendar();

}  // namespace kovi::holds::testing
