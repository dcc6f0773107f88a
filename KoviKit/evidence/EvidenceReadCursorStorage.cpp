#include "KoviKit/evidence/EvidenceReadCursorStorage.h"

#include <algorithm>

namespace kovi {
namespace {

EvidenceReadFailure failure(EvidenceReadError error, const std::string& where, const std::string& reason) {
  return {error, where + ": " + reason};
}

// The version first: a document of a newer build is not corrupt, only not
// ours to read.
std::expected<void, EvidenceReadFailure> checkHeader(const nlohmann::json& document, const std::string& where) {
  auto header = JsonView(document).as<EvidenceReadCursorStorage::Header>();
  if (!header) return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, where, header.error().message()));
  if (header->version != EvidenceReadCursorStorage::kVersion) {
    return std::unexpected(failure(EvidenceReadError::unsupportedStoredVersion, where,
                                   "version " + std::to_string(header->version) + " is not supported"));
  }
  return {};
}

template <class T>
std::expected<T, EvidenceReadFailure> decodeChecked(const nlohmann::json& document, const std::string& where) {
  if (document.dump().size() > EvidenceReadCursorStorage::kMaxDocumentBytes) {
    return std::unexpected(failure(EvidenceReadError::storageTooLarge, where,
                                   "larger than " + std::to_string(EvidenceReadCursorStorage::kMaxDocumentBytes) +
                                       " bytes"));
  }
  if (auto header = checkHeader(document, where); !header) return std::unexpected(header.error());
  auto record = JsonView(document).as<T>();
  if (!record) return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, where, record.error().message()));
  return std::move(*record);
}

std::optional<std::string> recordProblem(const EvidenceReadCursorStorage::Record& record) {
  if (auto reason = record.scope.invalidReason()) return "scope: " + *reason;
  if (record.lastItemID.empty()) return "lastItemID is empty";
  if (record.lastItemID.size() > EvidenceReadCursorStorage::kMaxItemIDBytes) return "lastItemID is too long";
  return std::nullopt;
}

std::optional<std::string> acceptedProblem(const EvidenceReadScope& scope,
                                           const EvidenceReadCursorStorage::AcceptedRecord& record) {
  if (record.ownerID != scope.ownerID || record.subjectID != scope.subjectID || record.bindingID != scope.bindingID) {
    return "belongs to another owner, subject or binding";
  }
  if (record.days.empty() || record.days.size() > EvidenceReadCursorStorage::kMaxAcceptedDays) {
    return "holds " + std::to_string(record.days.size()) + " days, not 1 to " +
           std::to_string(EvidenceReadCursorStorage::kMaxAcceptedDays);
  }
  const bool negative = std::ranges::any_of(record.days, [](const auto& entry) { return entry.second < 0; });
  if (negative) return "an accepted step count is negative";
  return std::nullopt;
}

}  // namespace

std::expected<EvidenceReadCursorStorage::Record, EvidenceReadFailure> EvidenceReadCursorStorage::decodeStoredRecord(
    const nlohmann::json& document, const EvidenceReadScope& scope, const std::string& where) {
  auto record = decodeChecked<Record>(document, where);
  if (!record) return record;
  if (auto problem = recordProblem(*record)) {
    return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, where, *problem));
  }
  if (record->scope != scope) {
    return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, where, "belongs to another scope"));
  }
  return record;
}

std::expected<EvidenceReadCursorStorage::AcceptedRecord, EvidenceReadFailure>
EvidenceReadCursorStorage::decodeStoredAccepted(const nlohmann::json& document, const EvidenceReadScope& scope,
                                                const std::string& where) {
  auto record = decodeChecked<AcceptedRecord>(document, where);
  if (!record) return record;
  if (auto problem = acceptedProblem(scope, *record)) {
    return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, where, *problem));
  }
  return record;
}

std::expected<std::string, EvidenceReadFailure> EvidenceReadCursorStorage::encodeForStorage(const Record& record) {
  if (auto reason = record.scope.invalidReason()) {
    return std::unexpected(failure(EvidenceReadError::invalidScope, "scope", *reason));
  }
  if (auto problem = recordProblem(record)) {
    return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, "record", *problem));
  }
  Record stored = record;
  stored.version = kVersion;
  return encodeRecord(stored).dump();
}

std::expected<std::string, EvidenceReadFailure> EvidenceReadCursorStorage::encodeForStorage(
    const EvidenceReadScope& scope, const AcceptedRecord& record) {
  if (auto reason = scope.invalidReason()) return std::unexpected(failure(EvidenceReadError::invalidScope, "scope", *reason));
  if (auto problem = acceptedProblem(scope, record)) {
    return std::unexpected(failure(EvidenceReadError::invalidStoredCursor, "accepted record", *problem));
  }
  AcceptedRecord stored = record;
  stored.version = kVersion;
  const std::string text = encodeRecord(stored).dump();
  if (text.size() > kMaxDocumentBytes) {
    return std::unexpected(failure(EvidenceReadError::storageTooLarge, "accepted record",
                                   "larger than " + std::to_string(kMaxDocumentBytes) + " bytes"));
  }
  return text;
}

}  // namespace kovi
