#include "KoviMacHolds/platform/linux/LinuxAgentLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace kovi::holds::desktop {

namespace {

constexpr const char* kMainAppLauncher = "kovi-app";

std::filesystem::path lockPath() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && runtime[0] == '/') return std::filesystem::path(runtime) / "kovi-holds.lock";
  return std::filesystem::temp_directory_path() / ("kovi-holds-" + std::to_string(getuid()) + ".lock");
}

bool isOnPath(const char* program) {
  const char* path = std::getenv("PATH");
  if (path == nullptr) return false;
  std::string_view rest(path);
  while (!rest.empty()) {
    const auto colon = rest.find(':');
    const std::filesystem::path candidate = std::filesystem::path(std::string(rest.substr(0, colon))) / program;
    if (access(candidate.c_str(), X_OK) == 0) return true;
    if (colon == std::string_view::npos) break;
    rest.remove_prefix(colon + 1);
  }
  return false;
}

}  // namespace

LinuxAgentLock::~LinuxAgentLock() {
  if (fd_ >= 0) close(fd_);
}

bool LinuxAgentLock::anotherAgentIsRunning() {
  if (fd_ >= 0) return false;  // this process holds the lock already
  const int fd = ::open(lockPath().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) return false;  // without a lock file there is nothing to compete for
  if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
    const bool held = errno == EWOULDBLOCK;
    close(fd);
    return held;
  }
  fd_ = fd;
  return false;
}

void launchMainApp() {
  if (!isOnPath(kMainAppLauncher)) return;
  // Its own session, and reparented to init so the agent never has to reap it.
  const pid_t child = fork();
  if (child < 0) return;
  if (child == 0) {
    setsid();
    if (fork() == 0) {
      execlp(kMainAppLauncher, kMainAppLauncher, static_cast<char*>(nullptr));
      _exit(127);
    }
    _exit(0);
  }
  waitpid(child, nullptr, 0);
}

}  // namespace kovi::holds::desktop
