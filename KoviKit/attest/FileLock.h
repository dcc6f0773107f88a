#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kovi {

// Holds an exclusive advisory lock (flock) on a file for as long as it
// lives, so processes that use one key's counter take turns.
class FileLock {
 public:
  static std::expected<FileLock, std::string> acquire(const std::filesystem::path& path);
  FileLock(FileLock&& other) noexcept;
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;
  FileLock& operator=(FileLock&&) = delete;
  ~FileLock();

 private:
  explicit FileLock(int fd) : fd_(fd) {}
  int fd_;
};

}  // namespace kovi
