#include "KoviKit/foundation/FileKeyValueStore.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

constexpr int kDocumentVersion = 1;
// Preferences are small; a larger file is not one of ours.
constexpr std::size_t kDocumentLimit = 4 * 1024 * 1024;

KeyValueStoreError failure(KeyValueStoreError::Kind kind, const std::filesystem::path& path, std::string_view reason) {
  return KeyValueStoreError{kind, path.string() + ": " + std::string(reason)};
}

// Holds an exclusive flock on the domain's lock file until destroyed. The lock
// file is never removed: removing it would let two writers lock different files.
class ExclusiveFileLock {
 public:
  static std::expected<ExclusiveFileLock, KeyValueStoreError> acquire(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::create_directories(path.parent_path(), error);
    if (error) return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, path.parent_path(), error.message()));
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, path, std::strerror(errno)));
    while (::flock(fd, LOCK_EX) != 0) {
      if (errno == EINTR) continue;
      const std::string reason = std::strerror(errno);
      ::close(fd);
      return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, path, reason));
    }
    return ExclusiveFileLock(fd);
  }
  ExclusiveFileLock(ExclusiveFileLock&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  ExclusiveFileLock(const ExclusiveFileLock&) = delete;
  ExclusiveFileLock& operator=(const ExclusiveFileLock&) = delete;
  ExclusiveFileLock& operator=(ExclusiveFileLock&&) = delete;
  ~ExclusiveFileLock() {
    if (fd_ >= 0) ::close(fd_);  // closing the descriptor releases the flock
  }

 private:
  explicit ExclusiveFileLock(int fd) : fd_(fd) {}
  int fd_;
};

std::expected<nlohmann::json, KeyValueStoreError> decodeDocument(const std::filesystem::path& path,
                                                                 std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(failure(KeyValueStoreError::Kind::corrupt, path, document.error().message()));
  const JsonView root(*document);
  auto version = root.get<int>("version");
  if (!version) return std::unexpected(failure(KeyValueStoreError::Kind::corrupt, path, version.error().message()));
  if (*version > kDocumentVersion) {
    return std::unexpected(failure(KeyValueStoreError::Kind::unsupported, path,
                                   "version " + std::to_string(*version) + " is newer than this program"));
  }
  if (*version < kDocumentVersion) {
    return std::unexpected(
        failure(KeyValueStoreError::Kind::corrupt, path, "unknown version " + std::to_string(*version)));
  }
  auto values = root.member("values");
  if (!values) return std::unexpected(failure(KeyValueStoreError::Kind::corrupt, path, values.error().message()));
  if (auto object = values->requireObject(); !object) {
    return std::unexpected(failure(KeyValueStoreError::Kind::corrupt, path, object.error().message()));
  }
  return std::move((*document)["values"]);
}

timespec modificationTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

}  // namespace

bool FileKeyValueStore::FileIdentity::operator==(const FileIdentity& other) const {
  return device == other.device && inode == other.inode && size == other.size &&
         modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

FileKeyValueStore::FileKeyValueStore(std::string domain, std::filesystem::path directory)
    : documentPath_(directory / "Kovi" / "Preferences" / "v1" / (domain + ".json")),
      lockPath_(documentPath_.string() + ".lock"),
      cachedValues_(nlohmann::json::object()) {}

std::expected<nlohmann::json, KeyValueStoreError> FileKeyValueStore::values() const {
  const std::lock_guard lock(mutex_);
  return currentValues();
}

std::expected<nlohmann::json, KeyValueStoreError> FileKeyValueStore::currentValues() const {
  // The identity is taken before reading: if another process replaces the
  // file in between, the next read sees a different identity and reads again.
  struct stat status {};
  if (::stat(documentPath_.c_str(), &status) != 0) {
    if (errno == ENOENT) {
      cachedIdentity_.reset();
      return nlohmann::json::object();
    }
    return std::unexpected(failure(KeyValueStoreError::Kind::unreadable, documentPath_, std::strerror(errno)));
  }
  const FileIdentity identity{status.st_dev, status.st_ino, status.st_size, modificationTime(status)};
  if (cachedIdentity_ == identity) return cachedValues_;

  auto text = readFileLimited(documentPath_, kDocumentLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::missing) return nlohmann::json::object();
    return std::unexpected(failure(KeyValueStoreError::Kind::unreadable, documentPath_, text.error().detail));
  }
  auto decoded = decodeDocument(documentPath_, *text);
  if (!decoded) return decoded;
  cachedIdentity_ = identity;
  cachedValues_ = *decoded;
  return decoded;
}

std::expected<void, KeyValueStoreError> FileKeyValueStore::update(
    const std::function<void(nlohmann::json& values)>& change) {
  const std::lock_guard lock(mutex_);
  auto fileLock = ExclusiveFileLock::acquire(lockPath_);
  if (!fileLock) return std::unexpected(fileLock.error());

  auto current = currentValues();
  if (!current && current.error().kind == KeyValueStoreError::Kind::corrupt) {
    const std::filesystem::path aside = documentPath_.string() + ".corrupt";
    if (::rename(documentPath_.c_str(), aside.c_str()) != 0) {
      return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, aside, std::strerror(errno)));
    }
    current = nlohmann::json::object();
  }
  if (!current) return std::unexpected(current.error());

  nlohmann::json changed = *current;
  change(changed);
  if (!changed.is_object()) {
    return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, documentPath_, "values must stay an object"));
  }
  if (changed == *current) return {};

  const nlohmann::json document{{"version", kDocumentVersion}, {"values", changed}};
  // Invalid UTF-8 in a value is replaced rather than aborting the whole write.
  const std::string text = document.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  if (auto written = writeFileAtomically(documentPath_, text); !written) {
    return std::unexpected(KeyValueStoreError{KeyValueStoreError::Kind::unwritable, written.error()});
  }
  // The next read parses the new file once and caches it under its identity.
  cachedIdentity_.reset();
  return {};
}

}  // namespace kovi
