#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileIO.h"
#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/platform/MacLaunchIdentity.h"
#include "KoviMacHolds/platform/MacRunLoop.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/MacWorkspace.h"
#include "tests/holds/HoldsTestSnapshots.h"
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
               MacActivationPolicy policy = MacActivationPolicy::regular) {
    const pid_t pid = nextPid_++;
    applications.push_back({pid, std::move(bundleIdentifier), std::move(name), policy, false});
    post(MacWorkspaceEvent::didLaunchApplication, pid);
    return pid;
  }
  // An application that is already in front when the story begins (no notification).
  pid_t launchInFront(std::string bundleIdentifier, std::string name) {
    return *(front = launch(std::move(bundleIdentifier), std::move(name)));
  }
  // Brings the application to the front and tells the observers.
  void activate(pid_t pid) {
    front = pid;
    post(MacWorkspaceEvent::didActivateApplication, pid);
  }
  void terminate(pid_t pid) {
    std::erase_if(applications, [pid](const auto& application) { return application.processIdentifier == pid; });
    if (front == pid) front.reset();
    post(MacWorkspaceEvent::didTerminateApplication, pid);
  }
  void wake() { post(MacWorkspaceEvent::didWake, std::nullopt); }
  std::size_t observerCount(MacWorkspaceEvent event) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(observers_, [event](const auto& entry) { return entry.second.first == event; }));
  }

  std::vector<MacRunningApplication> runningApplications() override { return applications; }
  std::optional<MacRunningApplication> frontmostApplication() override {
    return front ? runningApplication(*front) : std::nullopt;
  }
  std::optional<MacRunningApplication> runningApplication(pid_t processIdentifier) override {
    const auto found = std::ranges::find(applications, processIdentifier, &MacRunningApplication::processIdentifier);
    return found == applications.end() ? std::nullopt : std::optional(*found);
  }
  bool hide(const MacRunningApplication& application) override {
    if (refusesToHide.contains(application.processIdentifier)) return false;
    hidden.push_back(application.processIdentifier);
    return true;
  }
  void openMainApp() override { ++openMainAppCount; }
  bool anotherAgentIsRunning() override { return anotherAgent; }
  std::set<std::string> desktopIdentifiers() const override { return desktop; }
  MacObserverToken addObserver(MacWorkspaceEvent event,
                               std::function<void(const MacWorkspaceNotification&)> handler) override {
    observers_.emplace(nextToken_, std::pair{event, std::move(handler)});
    return nextToken_++;
  }
  void removeObserver(MacObserverToken token) override { observers_.erase(token); }

 private:
  // Tells the observers of `event` registered now; a handler may remove others on the way.
  void post(MacWorkspaceEvent event, std::optional<pid_t> pid) {
    std::vector<MacObserverToken> tokens;
    for (const auto& [token, observer] : observers_) {
      if (observer.first == event) tokens.push_back(token);
    }
    for (MacObserverToken token : tokens) {
      if (auto found = observers_.find(token); found != observers_.end()) {
        auto handler = found->second.second;
        handler({event, pid});
      }
    }
  }
  std::map<MacObserverToken, std::pair<MacWorkspaceEvent, std::function<void(const MacWorkspaceNotification&)>>>
      observers_;
  MacObserverToken nextToken_ = 1;
  pid_t nextPid_ = 1000;
};

class FakeRunLoop final : public MacRunLoop {
 public:
  std::map<MacTimerToken, std::pair<std::chrono::milliseconds, std::function<void()>>> timers;
  std::optional<int> status;

  MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) override {
    timers.emplace(nextToken_, std::pair{interval, std::move(handler)});
    return nextToken_++;
  }
  void invalidateTimer(MacTimerToken token) override { timers.erase(token); }
  void exit(int exitStatus) override {
    if (!status) status = exitStatus;
  }
  bool hasExited() const override { return status.has_value(); }
  int run() override { return status.value_or(-1); }
  // One tick of every timer, as the loop would deliver after the interval.
  void tick() {
    std::vector<std::function<void()>> handlers;
    for (const auto& [token, timer] : timers) handlers.push_back(timer.second);
    for (const auto& handler : handlers) {
      if (!status) handler();
    }
  }

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
  bool visible = false;
};

class FakeShieldPanel final : public MacShieldPanel {
 public:
  explicit FakeShieldPanel(std::shared_ptr<FakeShieldState> state) : state_(std::move(state)) {}
  void setContent(MacHoldsShieldView view) override {
    state_->content = std::move(view);
    ++state_->contentUpdates;
  }
  void bringForward() override {
    state_->visible = true;
  }
  void orderOut() override { state_->visible = false; }
  bool isVisible() const override { return state_->visible; }

 private:
  std::shared_ptr<FakeShieldState> state_;
};

inline Calendar istanbulCalendar() { return calendarIn("Europe/Istanbul"); }
// "2026-11-23T10:00" in Istanbul.
inline Date istanbul(const char* localTime) { return at((std::string(localTime) + ":00+03:00").c_str()); }

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

  MacHoldsPlatform platform() {
    return {workspace, runLoop, launchIdentity, [state = shield]() -> std::unique_ptr<MacShieldPanel> {
              ++state->created;
              return std::make_unique<FakeShieldPanel>(state);
            }};
  }
  MacHoldsClock clock() {
    return {[this] { return now; }, [] { return istanbulCalendar(); }};
  }
  void writeSnapshot(const std::string& json) { ASSERT_TRUE(writeFileAtomically(file, json).has_value()); }
  // Starts the agent as the delegate does at launch.
  std::unique_ptr<MacHoldsAppDelegate> launch() {
    MacHoldsAgentOptions options{file, [this](std::string_view line) { log.emplace_back(line); }, clock(),
                                 [] { return std::optional<std::string>("kitten"); }};
    auto delegate = std::make_unique<MacHoldsAppDelegate>(platform(), std::move(options));
    delegate->applicationDidFinishLaunching();
    return delegate;
  }
  // Sets the clock, writes the snapshot and starts the agent.
  std::unique_ptr<MacHoldsAppDelegate> launchAt(const char* localTime, const std::string& json) {
    now = istanbul(localTime);
    writeSnapshot(json);
    return launch();
  }
};

// holds.json around the exam week 2026-11-20 to 2026-11-26 (study blocks
// 09:00–11:30 and 14:00–16:30, nights 23:00–07:00, 45 minutes of Social),
// with today's `allowance` record if given.
inline std::string examWeekJson(std::optional<std::string> allowance = std::nullopt) {
  return R"({"version": 1, "stopped": false, "syncedAt": 785307600, "examWeek": {"startDay": "2026-11-20",
      "endDay": "2026-11-26", "days": 7, "firstMinute": 540, "secondMinute": 840, "blockMinutes": 150,
      "sleepStart": 1380, "sleepEnd": 420, "socialMinutes": 45, "strictness": "committed"},
      "keepCommunication": true)" + (allowance ? R"(, "allowance": )" + *allowance : "") + "}";
}

}  // namespace kovi::holds::testing
