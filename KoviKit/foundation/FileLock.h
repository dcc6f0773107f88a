#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <utility>

#include "KoviKit/foundation/FileDescriptor.h"

namespace kovi {

// An exclusive advisory lock (flock) on a lock file, so processes that share
// a file take turns changing it. The lock file is never removed: removing it
// would let two processes lock different files of one name.
//
// A caller that locks once uses `acquire`; one that locks often keeps the
// FileLock from `open` and takes the lock with `hold` each time, which costs
// two system calls instead of an open, a lock and a close.
class FileLock {
 public:
  // The lock held through a kept FileLock; released when this ends.
  class [[nodiscard]] Held {
   public:
    Held(Held&& other) noexcept;
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Held& operator=(Held&&) = delete;
    ~Held();

   private:
    friend class FileLock;
    explicit Held(int fd) : fd_(fd) {}
    int fd_;
  };

  // Opens (creating, mode 0600) the lock file at `path` without locking it.
  static std::expected<FileLock, std::string> open(const std::filesystem::path& path);
  // Opens the lock file and locks it until this FileLock ends.
  static std::expected<FileLock, std::string> acquire(const std::filesystem::path& path);

  // Blocks until this process holds the lock.
  std::expected<Held, std::string> hold();

  FileLock(FileLock&&) noexcept = default;
  FileLock& operator=(FileLock&&) = delete;

 private:
  FileLock(FileDescriptor file, std::filesystem::path path) : file_(std::move(file)), path_(std::move(path)) {}
  // Closing the descriptor releases a lock still held.
  FileDescriptor file_;
  std::filesystem::path path_;
};

}  // namespace kovi
