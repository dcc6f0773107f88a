#import "KoviMacHolds/platform/mac/AppKitRunLoop.h"

#import <AppKit/AppKit.h>

#include <cstdlib>

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds::mac {

MacTimerToken AppKitRunLoop::scheduleRepeatingTimer(std::chrono::milliseconds interval,
                                                    std::function<void()> handler) {
  const NSTimeInterval seconds = std::chrono::duration<double>(interval).count();
  NSTimer* timer = [NSTimer timerWithTimeInterval:seconds
                                          repeats:YES
                                            block:^(NSTimer*) {
                                              handler();
                                            }];
  // The common modes keep the timer firing while the shield is being dragged.
  [NSRunLoop.mainRunLoop addTimer:timer forMode:NSRunLoopCommonModes];
  const MacTimerToken token = nextToken_++;
  timers_.emplace(token, timer);
  return token;
}

void AppKitRunLoop::invalidateTimer(MacTimerToken token) {
  const auto found = timers_.find(token);
  if (found == timers_.end()) return;
  [found->second invalidate];
  timers_.erase(found);
}

void AppKitRunLoop::exit(int status) { std::exit(status); }

int AppKitRunLoop::run() {
  [NSApplication.sharedApplication run];
  // NSApplication's loop returns only when stopped, and nothing here stops it;
  // the agent ends through `exit`.
  return kMacHoldsExitDone;
}

}  // namespace kovi::holds::mac
