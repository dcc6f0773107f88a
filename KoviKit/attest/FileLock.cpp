#include "KoviKit/attest/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace kovi {

std::expected<FileLock, std::string> FileLock::acquire(const std::filesystem::path& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0) return std::unexpected("cannot open " + path.string() + ": " + std::strerror(errno));
  while (::flock(fd, LOCK_EX) != 0) {
    if (errno == EINTR) continue;
    const std::string reason = "cannot lock " + path.string() + ": " + std::strerror(errno);
    ::close(fd);
    return std::unexpected(reason);
  }
  return FileLock(fd);
}

FileLock::FileLock(FileLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

FileLock::~FileLock() {
  if (fd_ >= 0) ::close(fd_);
}

}  // namespace kovi
