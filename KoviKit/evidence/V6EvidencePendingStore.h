#pragma once

#include <expected>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KoviKit/evidence/V6WalkingSubmission.h"
#include "KoviKit/evidence/V6WriterTransfer.h"

namespace kovi {

// Operations that were signed and sent but not yet confirmed, one file each
// under `<dataDirectory>/Kovi/PendingV6HealthEvidence`. A record is written
// before its request leaves the device and removed when the service's receipt
// covers it, so a lost answer or a killed process leaves it to be sent again
// unchanged (same requestId, same signature).
class V6EvidencePendingStore {
 public:
  static constexpr std::string_view kProtocolGeneration = "v6";
  // A submission of a whole kovi's days stays far below this.
  static constexpr std::size_t kRecordLimit = 4 * 1024 * 1024;

  using Operation = std::variant<V6WalkingSubmission, V6WriterTransferRequest>;

  struct Record {
    std::string protocolGeneration{kProtocolGeneration};
    std::string ownerID;
    std::string deviceKeyID;
    Operation operation;
    bool operator==(const Record&) const = default;

    // The kovi the operation is for.
    const std::string& reference() const;
    const std::string& requestId() const;
  };

  enum class Failure {
    conflict,  // a different record is already pending for the same owner and kovi
    tooLarge,  // the record is larger than kRecordLimit
    corrupt,   // the file does not decode; it is reported and left as it is
    io,        // the file system refused
  };

  struct Error {
    Failure failure;
    // The file and why, for the user of the tool and for logs.
    std::string detail;
    bool operator==(const Error&) const = default;
  };

  // What is pending for one owner: the records, and the files of that owner
  // that do not decode.
  struct Listing {
    std::vector<Record> records;
    std::vector<Error> corrupt;
  };

  explicit V6EvidencePendingStore(const std::filesystem::path& dataDirectory);

  // Keeps `record`; the same record again is accepted as it is (a resend).
  std::expected<void, Error> save(const Record& record);
  Listing pending(std::string_view ownerID) const;
  // Removes the record of `ownerID` for `reference` if its request is
  // `requestId`; a newer record under the same name stays.
  std::expected<void, Error> remove(std::string_view ownerID, std::string_view reference, std::string_view requestId);

  // The file of an owner's record for one kovi: both named by hashes, so no
  // account or reference text reaches a path.
  std::filesystem::path pathFor(std::string_view ownerID, std::string_view reference) const;
  const std::filesystem::path& directory() const { return directory_; }

  // The record's JSON: {"protocolGeneration", "ownerID", "deviceKeyID",
  // "operation": {"submission": {"_0": …}} or {"transfer": {"_0": …}}}.
  static std::string encode(const Record& record);
  static Decoded<Record> decode(std::string_view text);

 private:
  std::filesystem::path directory_;
  mutable std::mutex mutex_;
};

template <>
struct EnumNames<V6EvidencePendingStore::Failure> {
  static constexpr std::array table{
      std::pair{V6EvidencePendingStore::Failure::conflict, std::string_view("conflict")},
      std::pair{V6EvidencePendingStore::Failure::tooLarge, std::string_view("tooLarge")},
      std::pair{V6EvidencePendingStore::Failure::corrupt, std::string_view("corrupt")},
      std::pair{V6EvidencePendingStore::Failure::io, std::string_view("io")},
  };
};

}  // namespace kovi
