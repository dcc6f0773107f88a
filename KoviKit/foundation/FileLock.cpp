#include "KoviKit/foundation/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace kovi {

std::expected<FileLock, std::string> FileLock::open(const std::filesystem::path& path) {
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (file.get() < 0) return std::unexpected("cannot open " + path.string() + ": " + std::strerror(errno));
  return FileLock(std::move(file), path);
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
  while (::flock(file_.get(), LOCK_EX) != 0) {
    if (errno != EINTR) return std::unexpected("cannot lock " + path_.string() + ": " + std::strerror(errno));
  }
  return Held(file_.get());
}

FileLock::Held::Held(Held&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

FileLock::Held::~Held() {
  if (fd_ >= 0) ::flock(fd_, LOCK_UN);
}

}  // namespace kovi
