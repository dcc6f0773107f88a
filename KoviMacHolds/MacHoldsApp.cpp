#include "KoviMacHolds/MacHoldsApp.h"

#include <algorithm>

#include "KoviMacHolds/MacHoldsDecision.h"
#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

MacHoldsEngine::MacHoldsEngine(MacHoldsPlatform platform, std::shared_ptr<MacHoldsAppGuard> guardian,
                               std::filesystem::path file, MacHoldsLog log, MacHoldsClock clock)
    : platform_(std::move(platform)),
      guardian_(std::move(guardian)),
      file_(std::move(file)),
      log_(std::move(log)),
      clock_(std::move(clock)) {}

MacHoldsEngine::~MacHoldsEngine() {
  for (MacObserverToken token : observers_) platform_.workspace.removeObserver(token);
  if (timer_) platform_.runLoop.invalidateTimer(*timer_);
}

void MacHoldsEngine::start() {
  launchIdentity_ = platform_.launchIdentity.executableIdentity();

  if (platform_.workspace.anotherAgentIsRunning()) {
    finish(kMacHoldsExitDone, "exit: another copy of the agent is running");
    return;
  }

  std::weak_ptr<MacHoldsEngine> weakSelf = weak_from_this();
  auto evaluateIfAlive = [weakSelf] {
    if (auto self = weakSelf.lock()) self->evaluate();
  };
  for (MacWorkspaceEvent event : {MacWorkspaceEvent::didLaunchApplication, MacWorkspaceEvent::didTerminateApplication,
                                  MacWorkspaceEvent::didWake}) {
    observers_.push_back(platform_.workspace.addObserver(
        event, [evaluateIfAlive](const MacWorkspaceNotification&) { evaluateIfAlive(); }));
  }
  timer_ = platform_.runLoop.scheduleRepeatingTimer(kMacHoldsEvaluationInterval, evaluateIfAlive);
  evaluate();
}

void MacHoldsEngine::evaluate() {
  if (platform_.runLoop.hasExited()) return;
  if (executableWasReplaced()) {
    guardian_->stop();
    finish(kMacHoldsExitReplaced, "exit: the agent's executable was replaced; restarting");
    return;
  }
  const bool mainAppRunning = mainAppIsRunning();
  const MacHoldsSnapshotLoad snapshot = loadMacHoldsSnapshot(file_);
  carryOut(decideMacHoldsAction(snapshot, clock_.now(), clock_.calendar(), mainAppRunning), mainAppRunning);
}

bool MacHoldsEngine::executableWasReplaced() {
  if (!launchIdentity_) return false;
  // A stat that fails now (an installer mid-copy) is not a change.
  const auto current = platform_.launchIdentity.executableIdentity();
  return current && *current != *launchIdentity_;
}

bool MacHoldsEngine::mainAppIsRunning() {
  const auto applications = platform_.workspace.runningApplications();
  return std::ranges::any_of(applications, [](const MacRunningApplication& application) {
    return !application.isTerminated && application.bundleIdentifier == kMacHoldsMainAppBundleID;
  });
}

void MacHoldsEngine::carryOut(const MacHoldsAction& action, bool mainAppRunning) {
  switch (action.kind()) {
    case MacHoldsAction::Kind::hold: {
      const auto& held = *action.held();
      note(holdLogLine(held.due, clock_.calendar()));
      guardian_->apply(held.due, held.plan);
      return;
    }
    case MacHoldsAction::Kind::standBy:
      note(mainAppRunning ? "stand by: Kovi is running" : "stand by: nothing is held right now");
      guardian_->stop();
      return;
    case MacHoldsAction::Kind::exit:
      guardian_->stop();
      finish(kMacHoldsExitDone, "exit: nothing left to hold");
      return;
  }
}

void MacHoldsEngine::note(std::string line) {
  if (line == lastLine_) return;
  log_(line);
  lastLine_ = std::move(line);
}

void MacHoldsEngine::finish(int status, std::string line) {
  note(std::move(line));
  platform_.runLoop.exit(status);
}

MacHoldsAppDelegate::MacHoldsAppDelegate(MacHoldsPlatform platform, MacHoldsAgentOptions options)
    : platform_(std::move(platform)), options_(std::move(options)) {}

void MacHoldsAppDelegate::applicationDidFinishLaunching() {
  std::filesystem::path file = options_.file.empty() ? defaultMacHoldsSnapshotPath() : options_.file;
  auto guardian = std::make_shared<MacHoldsAppGuard>(MacHoldsGuardContext{
      .workspace = platform_.workspace,
      .makeShieldPanel = platform_.makeShieldPanel,
      .log = options_.log,
      .clock = options_.clock,
      .catStage = options_.catStage,
  });
  engine_ = std::make_shared<MacHoldsEngine>(platform_, std::move(guardian), std::move(file), options_.log,
                                             options_.clock);
  engine_->start();
}

}  // namespace kovi::holds
