#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "KoviKit/evidence/WalkingEvidenceLane.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// Each owner's upload backoff between runs, one file per owner under
// `<dataDirectory>/Kovi/WalkingEvidenceBackoff`, named by a hash of the owner.
// Only transient failures are stored: the other failure classes wait for a
// change on the device or the service (new data, a new key, a re-read day),
// not for time. A file that does not decode is reported and left as it is.
class WalkingEvidenceBackoffStore {
 public:
  explicit WalkingEvidenceBackoffStore(const std::filesystem::path& dataDirectory);

  // The stored backoff, or none stored (a clear backoff).
  std::expected<WalkingEvidenceBackoff, std::string> load(std::string_view ownerID) const;
  // Counts a transient failure at `now` into the stored backoff and returns
  // it; other failure classes leave the store alone and return what it holds.
  std::expected<WalkingEvidenceBackoff, std::string> recordFailure(std::string_view ownerID,
                                                                   WalkingEvidenceFailure failure, UnixMillis now);
  // A success: the owner starts over.
  std::expected<void, std::string> clear(std::string_view ownerID);

  std::filesystem::path pathFor(std::string_view ownerID) const;

 private:
  std::filesystem::path directory_;
};

template <>
struct JsonRecordFields<WalkingEvidenceBackoff> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("consecutiveFailures", &WalkingEvidenceBackoff::consecutiveFailures),
                                            field("nextAttemptAt", &WalkingEvidenceBackoff::nextAttemptAt)};
};

}  // namespace kovi
