#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/FileDescriptor.h"

namespace kovi {

enum class FileReadFailure { missing, unreadable, tooLarge };

struct FileReadError {
  FileReadFailure failure;
  std::string detail;  // the system's words, for logs ("Permission denied")
};

// Reads a whole file of at most `limit` bytes. Never reads more than
// `limit` + 1 bytes, so an oversized or endless file costs no more than that.
std::expected<std::string, FileReadError> readFileLimited(const std::filesystem::path& path, std::size_t limit);

// A file read whole and kept open, so that asking whether it is still the
// file at its path costs one fstat and no path lookup. While it is open its
// inode cannot be reused: a file replaced by rename or removed shows no links
// left, and one rewritten in place another size or modification time (a
// rewrite of the same size within one tick of the file system's clock would
// go unnoticed; the files read this way are only ever replaced whole). A
// reader that keeps what it parsed beside the snapshot reads again only when
// the snapshot is no longer current.
class FileSnapshot {
 public:
  // Reads the file at `path`, of at most `limit` bytes, as readFileLimited does.
  static std::expected<FileSnapshot, FileReadError> read(const std::filesystem::path& path, std::size_t limit);

  const std::string& contents() const { return contents_; }
  // False once the file at the path was replaced, removed or changed since the read.
  bool isCurrent() const;

 private:
  FileSnapshot(FileDescriptor file, off_t size, timespec modified, std::string contents)
      : file_(std::move(file)), size_(size), modified_(modified), contents_(std::move(contents)) {}
  FileDescriptor file_;
  off_t size_;
  timespec modified_;
  std::string contents_;
};

// Replaces `path` with `bytes` so that a crash leaves either the old file or
// the new one, never a torn one: a temporary file in the same directory is
// written, flushed to disk and renamed over the target, and the directory
// entry is flushed too. Missing parent directories are created. On failure
// the error says what failed, and the old file is untouched. The new file is
// created with `permissions` (less what the umask removes), so a secret is
// never readable by others, not even before a chmod.
std::expected<void, std::string> writeFileAtomically(const std::filesystem::path& path, std::string_view bytes,
                                                     std::filesystem::perms permissions = std::filesystem::perms(0644));

}  // namespace kovi
