#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "KoviKit/evidence/EvidenceReadError.h"
#include "KoviKit/evidence/EvidenceReadScope.h"

namespace kovi {

// Where read cursors survive restarts: per scope, the last item handed out
// (`Record`) and the days the service has accepted (`AcceptedRecord`). Both
// implementations keep the same JSON documents, checked the same way: the
// `Header` first, so a version this build does not know is told apart from
// a corrupt document; then the record, strictly; then that it belongs to the
// scope asked for.
class EvidenceReadCursorStorage {
 public:
  static constexpr int kVersion = 1;
  // A stored document is at most this long. A record holds a scope of at
  // most four 256-byte identifiers and one item ID; an accepted record at
  // most `kMaxAcceptedDays` entries of about 30 bytes.
  static constexpr std::size_t kMaxDocumentBytes = 64 * 1024;
  // An accepted record holds 1 to this many days (a kovi lasts at most a year).
  static constexpr std::size_t kMaxAcceptedDays = 365;
  static constexpr std::size_t kMaxItemIDBytes = 1024;

  struct Header {
    int version = 0;
    bool operator==(const Header&) const = default;
  };

  struct Record {
    int version = kVersion;
    EvidenceReadScope scope;
    // The last item handed out.
    std::string lastItemID;
    bool operator==(const Record&) const = default;
  };

  struct AcceptedRecord {
    int version = kVersion;
    std::string ownerID;
    std::string subjectID;
    std::string bindingID;
    // Day index -> the step count the service accepted for it.
    std::map<int, std::int64_t> days;
    bool operator==(const AcceptedRecord&) const = default;
  };

  virtual ~EvidenceReadCursorStorage() = default;

  // nullopt when the scope has no stored record yet.
  virtual std::expected<std::optional<Record>, EvidenceReadFailure> loadRecord(const EvidenceReadScope& scope) = 0;
  virtual std::expected<void, EvidenceReadFailure> saveRecord(const Record& record) = 0;
  virtual std::expected<std::optional<AcceptedRecord>, EvidenceReadFailure> loadAccepted(
      const EvidenceReadScope& scope) = 0;
  virtual std::expected<void, EvidenceReadFailure> saveAccepted(const EvidenceReadScope& scope,
                                                                const AcceptedRecord& record) = 0;
  // Removes both documents of the scope; removing nothing is no failure.
  virtual std::expected<void, EvidenceReadFailure> remove(const EvidenceReadScope& scope) = 0;

 protected:
  // The checks both storages share, on a document already parsed. `where`
  // names the file or key in the failure's detail.
  static std::expected<Record, EvidenceReadFailure> decodeStoredRecord(const nlohmann::json& document,
                                                                       const EvidenceReadScope& scope,
                                                                       const std::string& where);
  static std::expected<AcceptedRecord, EvidenceReadFailure> decodeStoredAccepted(const nlohmann::json& document,
                                                                                 const EvidenceReadScope& scope,
                                                                                 const std::string& where);
  // The documents to store, after the same checks a load makes.
  static std::expected<std::string, EvidenceReadFailure> encodeForStorage(const Record& record);
  static std::expected<std::string, EvidenceReadFailure> encodeForStorage(const EvidenceReadScope& scope,
                                                                          const AcceptedRecord& record);
};

template <>
struct JsonRecordFields<EvidenceReadCursorStorage::Header> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("version", &EvidenceReadCursorStorage::Header::version)};
};

template <>
struct JsonRecordFields<EvidenceReadCursorStorage::Record> : StrictJsonRecord {
  using Record = EvidenceReadCursorStorage::Record;
  static constexpr auto fields = std::tuple{field("version", &Record::version), field("scope", &Record::scope),
                                            field("lastItemID", &Record::lastItemID)};
};

template <>
struct JsonRecordFields<EvidenceReadCursorStorage::AcceptedRecord> : StrictJsonRecord {
  using AcceptedRecord = EvidenceReadCursorStorage::AcceptedRecord;
  static constexpr auto fields =
      std::tuple{field("version", &AcceptedRecord::version), field("ownerID", &AcceptedRecord::ownerID),
                 field("subjectID", &AcceptedRecord::subjectID), field("bindingID", &AcceptedRecord::bindingID),
                 field("days", &AcceptedRecord::days)};
};

}  // namespace kovi
