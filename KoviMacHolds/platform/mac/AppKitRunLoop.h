#pragma once

#import <Foundation/Foundation.h>

#include <map>

#include "KoviMacHolds/platform/MacRunLoop.h"

namespace kovi::holds::mac {

// The application's main run loop: timers are NSTimers on it, workspace
// notifications arrive on its main queue, and `run` is NSApplication's event
// loop. Ending the agent ends the process with the status there and then, so
// nothing runs after `exit`, and the status is what a LaunchAgent sees.
class AppKitRunLoop final : public MacRunLoop {
 public:
  AppKitRunLoop() = default;
  AppKitRunLoop(const AppKitRunLoop&) = delete;
  AppKitRunLoop& operator=(const AppKitRunLoop&) = delete;

  MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
  void invalidateTimer(MacTimerToken token) override;
  [[noreturn]] void exit(int status) override;
  // `exit` never returns, so nothing can observe the agent after it.
  bool hasExited() const override { return false; }
  // Runs the application until `exit`; NSApplication must be set up first.
  int run() override;

 private:
  std::map<MacTimerToken, NSTimer*> timers_;
  MacTimerToken nextToken_ = 1;
};

}  // namespace kovi::holds::mac
