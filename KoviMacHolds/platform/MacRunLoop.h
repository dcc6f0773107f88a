#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace kovi::holds {

using MacTimerToken = std::uint64_t;

// The agent's one thread: timers and workspace events are delivered here, one
// at a time, so no handler ever overlaps another.
class MacRunLoop {
 public:
  virtual ~MacRunLoop() = default;

  // Calls `handler` every `interval` until the timer is invalidated.
  virtual MacTimerToken scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) = 0;
  virtual void invalidateTimer(MacTimerToken token) = 0;

  // Ends the agent with `status`: no handler runs after this call returns
  // to the loop, and `run` returns the status.
  virtual void exit(int status) = 0;
  virtual bool hasExited() const = 0;

  // Runs until `exit`; returns the exit status.
  virtual int run() = 0;
};

}  // namespace kovi::holds
