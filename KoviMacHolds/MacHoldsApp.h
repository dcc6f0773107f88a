#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KoviMacHolds/MacHoldsAction.h"
#include "KoviMacHolds/MacHoldsGuard.h"
#include "KoviMacHolds/MacHoldsLog.h"
#include "KoviMacHolds/platform/MacLaunchIdentity.h"
#include "KoviMacHolds/platform/MacRunLoop.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/MacWorkspace.h"

namespace kovi::holds {

// How often the engine looks at the snapshot when nothing else happens.
inline constexpr std::chrono::milliseconds kMacHoldsEvaluationInterval{5000};

// The platform a running agent talks to. All of it outlives the agent.
struct MacHoldsPlatform {
  MacWorkspace& workspace;
  MacRunLoop& runLoop;
  MacLaunchIdentity& launchIdentity;
  MacShieldPanelFactory makeShieldPanel;
};

// Reads the snapshot on a timer and on workspace events, decides one action
// per evaluation and carries it out through the guard: hold, stand by, or end
// the agent. Lives in a shared_ptr: its timer and observers hold it weakly.
class MacHoldsEngine : public std::enable_shared_from_this<MacHoldsEngine> {
 public:
  MacHoldsEngine(MacHoldsPlatform platform, std::shared_ptr<MacHoldsAppGuard> guardian, std::filesystem::path file,
                 MacHoldsLog log, MacHoldsClock clock);
  MacHoldsEngine(const MacHoldsEngine&) = delete;
  MacHoldsEngine& operator=(const MacHoldsEngine&) = delete;
  ~MacHoldsEngine();

  // Takes the launch identity, leaves at once when another copy runs,
  // registers for launches, terminations and wake-ups, starts the timer and
  // evaluates once.
  void start();
  // One decision: replaced executable → exit 75; otherwise read the snapshot
  // and hold, stand by or exit 0.
  void evaluate();

  const MacHoldsAppGuard& guardian() const { return *guardian_; }

 private:
  bool executableWasReplaced();
  bool mainAppIsRunning();
  void carryOut(const MacHoldsAction& action, bool mainAppRunning);
  // Logs `line` unless it repeats the previous decision.
  void note(std::string line);
  void finish(int status, std::string line);

  MacHoldsPlatform platform_;
  std::shared_ptr<MacHoldsAppGuard> guardian_;
  std::filesystem::path file_;
  MacHoldsLog log_;
  MacHoldsClock clock_;
  std::optional<MacFileIdentity> launchIdentity_;
  std::optional<MacTimerToken> timer_;
  std::vector<MacObserverToken> observers_;
  std::string lastLine_;
};

// Where the agent's settings come from; tests replace each.
struct MacHoldsAgentOptions {
  std::filesystem::path file;  // the snapshot; defaults to Kovi/Holds/holds.json under the data directory
  MacHoldsLog log = standardErrorLog();
  MacHoldsClock clock = MacHoldsClock::system();
  std::function<std::optional<std::string>()> catStage;
};

// The platform-neutral half of the application delegate: builds the guard and
// the engine once the platform has launched, and keeps the engine.
class MacHoldsAppDelegate {
 public:
  MacHoldsAppDelegate(MacHoldsPlatform platform, MacHoldsAgentOptions options);

  void applicationDidFinishLaunching();

  const std::shared_ptr<MacHoldsEngine>& engine() const { return engine_; }

 private:
  MacHoldsPlatform platform_;
  MacHoldsAgentOptions options_;
  std::shared_ptr<MacHoldsEngine> engine_;
};

}  // namespace kovi::holds
