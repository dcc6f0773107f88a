#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <map>
#include <optional>

#include "KoviMacHolds/platform/MacRunLoop.h"
#include "KoviMacHolds/platform/x11/X11Display.h"

namespace kovi::holds::x11 {

// The agent's loop: one poll() over the X connection and one timerfd per
// timer, so the process sleeps until an X event arrives or a timer fires.
// A system sleep shows as the boot-time clock running ahead of the monotonic
// one (the monotonic clock stops while suspended); the loop notices the jump
// whenever it wakes and tells its wake handler.
class X11RunLoop final : public MacRunLoop {
 public:
  using EventHandler = std::function<void(const XEvent&)>;

  explicit X11RunLoop(X11Display& display);
  ~X11RunLoop() override;

  MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
  void invalidateTimer(MacTimerToken token) override;
  void exit(int status) override;
  bool hasExited() const override { return status_.has_value(); }
  int run() override;

  // Every X event goes to every handler, in the order they were added.
  void addEventHandler(EventHandler handler);
  void setWakeHandler(std::function<void()> handler) { wakeHandler_ = std::move(handler); }

  // A suspend shorter than this is not reported (clock jitter, short stalls).
  static constexpr std::chrono::milliseconds sleepThreshold{2000};

 private:
  struct Timer {
    int fd;
    std::function<void()> handler;
  };
  void dispatchPendingEvents();
  void fireTimer(MacTimerToken token);
  void checkForSleep();

  X11Display& display_;
  std::vector<EventHandler> eventHandlers_;
  std::map<MacTimerToken, Timer> timers_;
  MacTimerToken nextToken_ = 1;
  std::function<void()> wakeHandler_;
  std::chrono::nanoseconds suspendedSoFar_{};
  std::optional<int> status_;
};

}  // namespace kovi::holds::x11
