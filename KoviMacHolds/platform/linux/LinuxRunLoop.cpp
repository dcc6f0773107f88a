#include "KoviMacHolds/platform/linux/LinuxRunLoop.h"

#include <poll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <vector>

namespace kovi::holds::desktop {

namespace {

std::chrono::nanoseconds clockNow(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

// Time the machine spent suspended since boot: the boot-time clock counts it,
// the monotonic clock does not.
std::chrono::nanoseconds suspendedSinceBoot() { return clockNow(CLOCK_BOOTTIME) - clockNow(CLOCK_MONOTONIC); }

timespec toTimespec(std::chrono::milliseconds interval) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(interval);
  return {static_cast<time_t>(seconds.count()),
          static_cast<long>(std::chrono::duration_cast<std::chrono::nanoseconds>(interval - seconds).count())};
}

}  // namespace

LinuxRunLoop::LinuxRunLoop(int connectionFd) : connectionFd_(connectionFd), suspendedSoFar_(suspendedSinceBoot()) {}

LinuxRunLoop::~LinuxRunLoop() {
  for (auto& [token, timer] : timers_) close(timer.fd);
}

MacTimerToken LinuxRunLoop::scheduleRepeatingTimer(std::chrono::milliseconds interval, std::function<void()> handler) {
  const int fd = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
  const itimerspec spec{toTimespec(interval), toTimespec(interval)};
  timerfd_settime(fd, 0, &spec, nullptr);
  const MacTimerToken token = nextToken_++;
  timers_.emplace(token, Timer{fd, std::move(handler)});
  return token;
}

void LinuxRunLoop::invalidateTimer(MacTimerToken token) {
  if (auto found = timers_.find(token); found != timers_.end()) {
    close(found->second.fd);
    timers_.erase(found);
  }
}

void LinuxRunLoop::exit(int status) {
  if (!status_) status_ = status;
}

int LinuxRunLoop::run() {
  std::vector<pollfd> fds;
  std::vector<MacTimerToken> tokens;
  while (!status_) {
    dispatchPending();
    if (status_) break;

    fds.assign(1, pollfd{connectionFd_, POLLIN, 0});
    tokens.clear();
    for (const auto& [token, timer] : timers_) {
      fds.push_back({timer.fd, POLLIN, 0});
      tokens.push_back(token);
    }
    if (poll(fds.data(), fds.size(), -1) < 0) {
      if (errno == EINTR) continue;
      return 1;
    }
    checkForSleep();
    if (!connectionWoke(fds[0].revents)) return 1;  // the display server went away
    for (std::size_t index = 1; index < fds.size() && !status_; ++index) {
      if (fds[index].revents & POLLIN) fireTimer(tokens[index - 1]);
    }
  }
  return *status_;
}

void LinuxRunLoop::fireTimer(MacTimerToken token) {
  auto found = timers_.find(token);
  if (found == timers_.end()) return;  // invalidated by an earlier handler
  std::uint64_t expirations = 0;
  if (read(found->second.fd, &expirations, sizeof expirations) != sizeof expirations) return;
  // Missed expirations (a long stall) coalesce into one call.
  auto handler = found->second.handler;
  handler();
}

void LinuxRunLoop::checkForSleep() {
  const auto suspended = suspendedSinceBoot();
  if (suspended - suspendedSoFar_ < sleepThreshold) return;
  suspendedSoFar_ = suspended;
  if (wakeHandler_) wakeHandler_();
}

}  // namespace kovi::holds::desktop
