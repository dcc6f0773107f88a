#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

namespace kovi {

enum class FileReadFailure { missing, unreadable, tooLarge };

struct FileReadError {
  FileReadFailure failure;
  std::string detail;  // the system's words, for logs ("Permission denied")
};

// Reads a whole file of at most `limit` bytes. Never reads more than
// `limit` + 1 bytes, so an oversized or endless file costs no more than that.
std::expected<std::string, FileReadError> readFileLimited(const std::filesystem::path& path, std::size_t limit);

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
