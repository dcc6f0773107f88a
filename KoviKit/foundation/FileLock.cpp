#include "KoviKit/foundation/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace kovi {

std::expected<FileLock, std::string> FileLock::open(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) return std::unexpected("cannot open " + path.string() + ": " + std::strerror(errno));
  return FileLock(fd, path);
}

std::expected<FileLock, std::string> FileLock::acquire(const std::filesystem::path& path) {
  auto lock = open(path);
  if (!lock) return lock;
  auto held = lock->hold();
  if (!held) return std::unexpected(held.error());
  // The FileLock keeps the lock from here on: closing its descriptor releases it.
  held->fd_ = -1;
  return lock;
}

std::expected<FileLock::Held, std::string> FileLock::hold() {
  while (::flock(fd_, LOCK_EX) != 0) {
    if (errno != EINTR) return std::unexpected("cannot lock " + path_.string() + ": " + std::strerror(errno));
  }
  return Held(fd_);
}

FileLock::Held::Held(Held&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

FileLock::Held::~Held() {
  if (fd_ >= 0) ::flock(fd_, LOCK_UN);
}

FileLock::FileLock(FileLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)), path_(std::move(other.path_)) {}

FileLock::~FileLock() {
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace kovi
