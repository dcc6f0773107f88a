#pragma once

namespace kovi::holds::desktop {

// The one-copy-per-user rule of the agent on Linux: an exclusive flock on
// kovi-holds.lock in $XDG_RUNTIME_DIR (or the temporary directory), taken by
// the first copy and kept for the life of the process. Two copies started
// together cannot both get it, and a copy that dies releases it.
class LinuxAgentLock {
 public:
  LinuxAgentLock() = default;
  LinuxAgentLock(const LinuxAgentLock&) = delete;
  LinuxAgentLock& operator=(const LinuxAgentLock&) = delete;
  ~LinuxAgentLock();

  // True when another process holds the lock; otherwise this process takes it
  // (or already has it) and the answer is false.
  bool anotherAgentIsRunning();

 private:
  int fd_ = -1;
};

// Starts the main app's Linux launcher, `kovi-app`, from PATH, detached from
// the agent; does nothing when it is not installed.
void launchMainApp();

}  // namespace kovi::holds::desktop
