#include "KoviKit/foundation/FileKeyValueStore.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/FileLock.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

constexpr int kDocumentVersion = 1;
// Preferences are small; a larger file is not one of ours.
constexpr std::size_t kDocumentLimit = 4 * 1024 * 1024;

KeyValueStoreError failure(KeyValueStoreError::Kind kind, const std::filesystem::path& path, std::string_view reason) {
  return KeyValueStoreError{kind, path.string() + ": " + std::string(reason)};
}

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

}  // namespace

FileKeyValueStore::FileKeyValueStore(std::string domain, std::filesystem::path directory)
    : documentPath_(directory / "Kovi" / "Preferences" / "v1" / (domain + ".json")),
      lockPath_(documentPath_.string() + ".lock"),
      cachedValues_(nlohmann::json::object()) {}

std::expected<nlohmann::json, KeyValueStoreError> FileKeyValueStore::values() const {
  const std::lock_guard lock(mutex_);
  return currentValues();
}

std::expected<nlohmann::json, KeyValueStoreError> FileKeyValueStore::currentValues() const {
  if (snapshot_ && snapshot_->isCurrent()) return cachedValues_;
  auto snapshot = FileSnapshot::read(documentPath_, kDocumentLimit);
  if (!snapshot) {
    snapshot_.reset();
    if (snapshot.error().failure == FileReadFailure::missing) return nlohmann::json::object();
    return std::unexpected(failure(KeyValueStoreError::Kind::unreadable, documentPath_, snapshot.error().detail));
  }
  auto decoded = decodeDocument(documentPath_, snapshot->contents());
  if (!decoded) {
    snapshot_.reset();
    return decoded;
  }
  cachedValues_ = *decoded;
  snapshot_ = std::move(*snapshot);
  return decoded;
}

std::expected<void, KeyValueStoreError> FileKeyValueStore::update(
    const std::function<void(nlohmann::json& values)>& change) {
  const std::lock_guard lock(mutex_);
  std::error_code error;
  std::filesystem::create_directories(lockPath_.parent_path(), error);
  if (error) {
    return std::unexpected(failure(KeyValueStoreError::Kind::unwritable, lockPath_.parent_path(), error.message()));
  }
  auto fileLock = FileLock::acquire(lockPath_);
  if (!fileLock) return std::unexpected(KeyValueStoreError{KeyValueStoreError::Kind::unwritable, fileLock.error()});

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
  // The next read parses the new file once and keeps it with its snapshot.
  snapshot_.reset();
  return {};
}

}  // namespace kovi
