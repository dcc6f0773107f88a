#include "tests/holds_agent/MacHoldsFakes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "KoviKit/foundation/FileIO.h"

namespace kovi::holds::testing {

pid_t FakeWorkspace::launch(std::string bundleIdentifier, std::string name, MacActivationPolicy policy) {
  const pid_t pid = nextPid_++;
  applications.push_back({pid, std::move(bundleIdentifier), std::move(name), policy, false});
  post(MacWorkspaceEvent::didLaunchApplication, pid);
  return pid;
}

pid_t FakeWorkspace::launchInFront(std::string bundleIdentifier, std::string name) {
  const pid_t pid = launch(std::move(bundleIdentifier), std::move(name));
  front = pid;
  return pid;
}

void FakeWorkspace::activate(pid_t pid) {
  front = pid;
  post(MacWorkspaceEvent::didActivateApplication, pid);
}

void FakeWorkspace::terminate(pid_t pid) {
  std::erase_if(applications, [pid](const MacRunningApplication& application) {
    return application.processIdentifier == pid;
  });
  if (front == pid) front.reset();
  post(MacWorkspaceEvent::didTerminateApplication, pid);
}

void FakeWorkspace::wake() { post(MacWorkspaceEvent::didWake, std::nullopt); }

std::size_t FakeWorkspace::observerCount(MacWorkspaceEvent event) const {
  return static_cast<std::size_t>(std::ranges::count_if(observers_, [event](const auto& entry) {
    return entry.second.first == event;
  }));
}

std::optional<MacRunningApplication> FakeWorkspace::frontmostApplication() {
  return front ? runningApplication(*front) : std::nullopt;
}

std::optional<MacRunningApplication> FakeWorkspace::runningApplication(pid_t processIdentifier) {
  for (const auto& application : applications) {
    if (application.processIdentifier == processIdentifier) return application;
  }
  return std::nullopt;
}

bool FakeWorkspace::hide(const MacRunningApplication& application) {
  if (refusesToHide.contains(application.processIdentifier)) return false;
  hidden.push_back(application.processIdentifier);
  return true;
}

MacObserverToken FakeWorkspace::addObserver(MacWorkspaceEvent event,
                                            std::function<void(const MacWorkspaceNotification&)> handler) {
  const MacObserverToken token = nextToken_++;
  observers_.emplace(token, std::pair{event, std::move(handler)});
  return token;
}

void FakeWorkspace::post(MacWorkspaceEvent event, std::optional<pid_t> pid) {
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

MacTimerToken FakeRunLoop::scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) {
  const MacTimerToken token = nextToken_++;
  timers.emplace(token, std::pair{interval, std::move(handler)});
  return token;
}

void FakeRunLoop::tick() {
  std::vector<std::function<void()>> handlers;
  for (const auto& [token, timer] : timers) handlers.push_back(timer.second);
  for (const auto& handler : handlers) {
    if (!status) handler();
  }
}

void FakeShieldPanel::setContent(MacHoldsShieldView view) {
  state_->content = std::move(view);
  ++state_->contentUpdates;
}

void FakeShieldPanel::bringForward() {
  state_->visible = true;
  ++state_->broughtForward;
}

MacHoldsPlatform FakeAgent::platform() {
  auto state = shield;
  return {workspace, runLoop, launchIdentity, [state]() -> std::unique_ptr<MacShieldPanel> {
            ++state->created;
            return std::make_unique<FakeShieldPanel>(state);
          }};
}

MacHoldsClock FakeAgent::clock() {
  return {[this] { return now; }, [] { return istanbulCalendar(); }};
}

MacHoldsAgentOptions FakeAgent::options() {
  return {file, [this](std::string_view line) { log.emplace_back(line); }, clock(), [] {
            return std::optional<std::string>("kitten");
          }};
}

void FakeAgent::writeSnapshot(const std::string& json) { ASSERT_TRUE(writeFileAtomically(file, json).has_value()); }

std::unique_ptr<MacHoldsAppDelegate> FakeAgent::launch() {
  auto delegate = std::make_unique<MacHoldsAppDelegate>(platform(), options());
  delegate->applicationDidFinishLaunching();
  return delegate;
}

std::unique_ptr<MacHoldsAppDelegate> FakeAgent::launchAt(const char* localTime, const std::string& json) {
  now = istanbul(localTime);
  writeSnapshot(json);
  return launch();
}

std::string examWeekJson(bool keepCommunication, bool stopped, std::optional<std::string> allowance) {
  std::string json = R"({"version": 1, "stopped": )" + std::string(stopped ? "true" : "false") +
                     R"(, "syncedAt": 785307600, "examWeek": {"startDay": "2026-11-20", "endDay": "2026-11-26",
      "days": 7, "firstMinute": 540, "secondMinute": 840, "blockMinutes": 150, "sleepStart": 1380,
      "sleepEnd": 420, "socialMinutes": 45, "strictness": "committed"}, "keepCommunication": )" +
                     std::string(keepCommunication ? "true" : "false");
  if (allowance) json += R"(, "allowance": )" + *allowance;
  return json + "}";
}

std::string everydaySleepJson() {
  return R"({"version": 1, "stopped": false, "syncedAt": 785307600,
    "sleep": {"startMinute": 1380, "endMinute": 420, "strictness": "committed"}, "keepCommunication": false})";
}

Calendar istanbulCalendar() {
  auto calendar = Calendar::inZone("Europe/Istanbul");
  EXPECT_TRUE(calendar.has_value());
  return calendar ? *calendar : Calendar::current();
}

Date istanbul(const char* localTime) {
  const auto millis = parseInstant(std::string(localTime) + ":00+03:00");
  EXPECT_TRUE(millis.has_value()) << localTime;
  return Date::fromUnixMillis(static_cast<double>(millis.value_or(0)));
}

}  // namespace kovi::holds::testing
