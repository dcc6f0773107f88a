#pragma once

#include <string>
#include <string_view>

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The codes of the walking evidence area, as the service and this device use
// them. The messages live in `v6EvidenceErrorTable()`.
namespace walkingErrorCode {
inline constexpr std::string_view rulesHashMismatch = "walking_rules_hash_mismatch";
inline constexpr std::string_view dayWindowsInvalid = "walking_day_windows_invalid";
inline constexpr std::string_view bucketAlignmentInvalid = "walking_bucket_alignment_invalid";
inline constexpr std::string_view noClosedBucket = "walking_no_closed_bucket";
inline constexpr std::string_view noReadableData = "walking_no_readable_data";
inline constexpr std::string_view healthSharingDisabled = "walking_health_sharing_disabled";
inline constexpr std::string_view readFailed = "walking_health_read_failed";
inline constexpr std::string_view evidencePending = "walking_evidence_pending";
inline constexpr std::string_view revisionConflict = "walking_evidence_revision_conflict";
}  // namespace walkingErrorCode

// The error vocabulary of "/api/native/v6/evidence": the walking codes of the
// rules, windows, buckets and submissions, and the device-key codes of the
// signing exchange that share the area.
const NativeErrorTable& v6EvidenceErrorTable();

// A walking evidence failure: the code (one of the table's) and, for logs and
// the `kovi` tool, an English detail of what exactly was wrong.
struct WalkingEvidenceError {
  std::string code;
  std::string detail;

  // The Turkish text the user reads.
  std::string message() const { return v6EvidenceErrorTable().messageFor(code); }
  bool operator==(const WalkingEvidenceError&) const = default;
};

}  // namespace kovi
