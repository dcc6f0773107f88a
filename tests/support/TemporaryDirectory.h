#pragma once

#include <filesystem>
#include <string_view>

namespace kovi::testing {

// A fresh directory under the system temporary directory, removed with
// everything in it when the object goes away.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  const std::filesystem::path& path() const { return path_; }
  // Writes `contents` to `name` inside the directory and returns its path.
  std::filesystem::path write(std::string_view name, std::string_view contents) const;

 private:
  std::filesystem::path path_;
};

}  // namespace kovi::testing
