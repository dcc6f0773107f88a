#include "KoviKit/evidence/EvidenceReadCursorFileStorage.h"

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

// The file's document, nullopt when there is no file.
std::expected<std::optional<nlohmann::json>, EvidenceReadFailure> readDocument(const std::filesystem::path& file) {
  auto text = readFileLimited(file, EvidenceReadCursorStorage::kMaxDocumentBytes);
  if (!text) {
    switch (text.error().failure) {
      case FileReadFailure::missing: return std::nullopt;
      case FileReadFailure::tooLarge:
        return std::unexpected(EvidenceReadFailure{
            EvidenceReadError::storageTooLarge,
            file.string() + ": larger than " + std::to_string(EvidenceReadCursorStorage::kMaxDocumentBytes) +
                " bytes"});
      case FileReadFailure::unreadable:
        return std::unexpected(
            EvidenceReadFailure{EvidenceReadError::storageUnavailable, file.string() + ": " + text.error().detail});
    }
  }
  auto document = parseJson(*text);
  if (!document) {
    return std::unexpected(
        EvidenceReadFailure{EvidenceReadError::invalidStoredCursor, file.string() + ": " + document.error().message()});
  }
  return std::move(*document);
}

std::expected<void, EvidenceReadFailure> writeDocument(const std::filesystem::path& file,
                                                       const std::expected<std::string, EvidenceReadFailure>& text) {
  if (!text) return std::unexpected(text.error());
  if (auto written = writeFileAtomically(file, *text); !written) {
    return std::unexpected(EvidenceReadFailure{EvidenceReadError::storageUnavailable, written.error()});
  }
  return {};
}

template <class Decode>
auto loadFrom(const std::filesystem::path& file, Decode decode)
    -> std::expected<std::optional<typename decltype(decode(nlohmann::json()))::value_type>, EvidenceReadFailure> {
  auto document = readDocument(file);
  if (!document) return std::unexpected(document.error());
  if (!*document) return std::nullopt;
  auto record = decode(**document);
  if (!record) return std::unexpected(record.error());
  return std::move(*record);
}

}  // namespace

EvidenceReadCursorFileStorage::EvidenceReadCursorFileStorage(const std::filesystem::path& dataDirectory)
    : directory_(dataDirectory / "Kovi" / "EvidenceReadCursors" / "v1") {}

std::filesystem::path EvidenceReadCursorFileStorage::recordFile(const EvidenceReadScope& scope) const {
  return directory_ / (scope.digest() + ".json");
}

std::filesystem::path EvidenceReadCursorFileStorage::acceptedFile(const EvidenceReadScope& scope) const {
  return directory_ / (scope.digest() + ".accepted.json");
}

std::expected<std::optional<EvidenceReadCursorStorage::Record>, EvidenceReadFailure>
EvidenceReadCursorFileStorage::loadRecord(const EvidenceReadScope& scope) {
  std::lock_guard lock(mutex_);
  const auto file = recordFile(scope);
  return loadFrom(file, [&](const nlohmann::json& document) {
    return decodeStoredRecord(document, scope, file.string());
  });
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorFileStorage::saveRecord(const Record& record) {
  std::lock_guard lock(mutex_);
  return writeDocument(recordFile(record.scope), encodeForStorage(record));
}

std::expected<std::optional<EvidenceReadCursorStorage::AcceptedRecord>, EvidenceReadFailure>
EvidenceReadCursorFileStorage::loadAccepted(const EvidenceReadScope& scope) {
  std::lock_guard lock(mutex_);
  const auto file = acceptedFile(scope);
  return loadFrom(file, [&](const nlohmann::json& document) {
    return decodeStoredAccepted(document, scope, file.string());
  });
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorFileStorage::saveAccepted(const EvidenceReadScope& scope,
                                                                                      const AcceptedRecord& record) {
  std::lock_guard lock(mutex_);
  return writeDocument(acceptedFile(scope), encodeForStorage(scope, record));
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorFileStorage::remove(const EvidenceReadScope& scope) {
  std::lock_guard lock(mutex_);
  for (const auto& file : {recordFile(scope), acceptedFile(scope)}) {
    std::error_code error;
    std::filesystem::remove(file, error);
    if (error) {
      return std::unexpected(
          EvidenceReadFailure{EvidenceReadError::storageUnavailable, file.string() + ": " + error.message()});
    }
  }
  return {};
}

}  // namespace kovi
