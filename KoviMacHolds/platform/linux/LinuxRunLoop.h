#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>

#include "KoviMacHolds/platform/MacRunLoop.h"

namespace kovi::holds::desktop {

// The agent's loop on Linux: one poll() over the display connection and one
// timerfd per timer, so the process sleeps until the display server says
// something or a timer fires. A system sleep shows as the boot-time clock
// running ahead of the monotonic one (the monotonic clock stops while
// suspended); the loop notices the jump whenever it wakes and tells its wake
// handler. Each window system supplies how its connection is read.
class LinuxRunLoop : public MacRunLoop {
 public:
  explicit LinuxRunLoop(int connectionFd);
  ~LinuxRunLoop() override;
  LinuxRunLoop(const LinuxRunLoop&) = delete;
  LinuxRunLoop& operator=(const LinuxRunLoop&) = delete;

  MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) final;
  void invalidateTimer(MacTimerToken token) final;
  void exit(int status) final;
  bool hasExited() const final { return status_.has_value(); }
  int run() final;

  void setWakeHandler(std::function<void()> handler) { wakeHandler_ = std::move(handler); }

  // A suspend shorter than this is not reported (clock jitter, short stalls).
  static constexpr std::chrono::milliseconds sleepThreshold{2000};

 protected:
  // Handles everything the connection has already delivered and sends what
  // is queued for the server; runs before every sleep.
  virtual void dispatchPending() = 0;
  // Called after poll() with the connection's poll events; false when the
  // connection is gone, which ends the loop with status 1.
  virtual bool connectionWoke(short revents) = 0;

 private:
  struct Timer {
    int fd;
    std::function<void()> handler;
  };
  void fireTimer(MacTimerToken token);
  void checkForSleep();

  int connectionFd_;
  std::map<MacTimerToken, Timer> timers_;
  MacTimerToken nextToken_ = 1;
  std::function<void()> wakeHandler_;
  std::chrono::nanoseconds suspendedSoFar_{};
  std::optional<int> status_;
};

}  // namespace kovi::holds::desktop
