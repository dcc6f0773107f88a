#include "KoviKit/foundation/FileIO.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

namespace kovi {
namespace {

std::string systemError(std::string_view what, const std::filesystem::path& path) {
  return std::string(what) + " " + path.string() + ": " + std::strerror(errno);
}

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::filesystem::path temporarySibling(const std::filesystem::path& path) {
  // Seeded once per thread: opening a random device for every write cost a
  // quarter of a small durable write on a fast disk.
  thread_local std::mt19937_64 random{std::random_device{}()};
  return path.parent_path() /
         ("." + path.filename().string() + ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(random()));
}

FileReadError lastSystemReadError() {
  const auto failure = errno == ENOENT || errno == ENOTDIR ? FileReadFailure::missing : FileReadFailure::unreadable;
  return FileReadError{failure, std::strerror(errno)};
}

timespec modificationTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

// Reads the open `fd` whole, of at most `limit` bytes. `status` is the file's
// as fstat gave it just before (a pipe or /proc file reports size 0, so the
// buffer still grows up to the limit when it fills).
std::expected<std::string, FileReadError> readOpenFile(int fd, const struct stat& status, std::size_t limit) {
  const std::size_t reported = status.st_size > 0 ? static_cast<std::size_t>(status.st_size) : 0;
  std::string contents(std::min(reported, limit) + 1, '\0');
  std::size_t filled = 0;
  while (filled <= limit) {
    if (filled == contents.size()) contents.resize(limit + 1);
    const ssize_t count = ::read(fd, contents.data() + filled, contents.size() - filled);
    if (count < 0) {
      if (errno == EINTR) continue;
      return std::unexpected(FileReadError{FileReadFailure::unreadable, std::strerror(errno)});
    }
    if (count == 0) break;
    filled += static_cast<std::size_t>(count);
  }
  if (filled > limit) {
    return std::unexpected(FileReadError{FileReadFailure::tooLarge, "larger than " + std::to_string(limit) + " bytes"});
  }
  contents.resize(filled);
  return contents;
}

}  // namespace

std::expected<std::string, FileReadError> readFileLimited(const std::filesystem::path& path, std::size_t limit) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) return std::unexpected(lastSystemReadError());
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) status.st_size = 0;
  return readOpenFile(file.get(), status, limit);
}

std::expected<FileSnapshot, FileReadError> FileSnapshot::read(const std::filesystem::path& path, std::size_t limit) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) return std::unexpected(lastSystemReadError());
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return std::unexpected(lastSystemReadError());
  auto contents = readOpenFile(file.get(), status, limit);
  if (!contents) return std::unexpected(contents.error());
  return FileSnapshot(std::move(file), status.st_size, modificationTime(status), std::move(*contents));
}

bool FileSnapshot::isCurrent() const {
  struct stat status {};
  if (::fstat(file_.get(), &status) != 0 || status.st_nlink == 0) return false;
  const timespec modified = modificationTime(status);
  return status.st_size == size_ && modified.tv_sec == modified_.tv_sec && modified.tv_nsec == modified_.tv_nsec;
}

std::expected<void, std::string> writeFileAtomically(const std::filesystem::path& path, std::string_view bytes,
                                                     std::filesystem::perms permissions) {
  std::error_code error;
  const std::filesystem::path directory = path.has_parent_path() ? path.parent_path() : ".";
  std::filesystem::create_directories(directory, error);
  if (error) return std::unexpected("cannot create " + directory.string() + ": " + error.message());

  const std::filesystem::path temporary = temporarySibling(path);
  FileDescriptor file(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                              static_cast<mode_t>(permissions & std::filesystem::perms::mask)));
  if (file.get() < 0) return std::unexpected(systemError("cannot create", temporary));
  if (!writeAll(file.get(), bytes) || ::fsync(file.get()) != 0 || !file.close()) {
    const std::string reason = systemError("cannot write", temporary);
    ::unlink(temporary.c_str());
    return std::unexpected(reason);
  }
  if (::rename(temporary.c_str(), path.c_str()) != 0) {
    const std::string reason = systemError("cannot replace", path);
    ::unlink(temporary.c_str());
    return std::unexpected(reason);
  }
  // Flush the directory so the rename itself survives a power loss.
  FileDescriptor directoryHandle(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directoryHandle.get() >= 0) ::fsync(directoryHandle.get());
  return {};
}

}  // namespace kovi
