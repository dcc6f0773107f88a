#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// Where a kovi stands in the evidence cycle, in order of time.
enum class WalkingEvidenceLane {
  pending,      // its first day has not begun
  open,         // days are running
  closingSoon,  // the last hours of the last day
  finalizing,   // the last day has ended; missing data is still accepted
  final,        // evidence is closed
};

// How prominently the card offers to upload evidence.
enum class WalkingEvidenceUploadVisibility { hidden, standard, urgent, closed };

// Why an upload did not go through.
enum class WalkingEvidenceFailure { noData, attestationUnsupported, attestation, rejected, transient };

template <>
struct EnumNames<WalkingEvidenceLane> {
  static constexpr std::array table{
      std::pair{WalkingEvidenceLane::pending, std::string_view("pending")},
      std::pair{WalkingEvidenceLane::open, std::string_view("open")},
      std::pair{WalkingEvidenceLane::closingSoon, std::string_view("closingSoon")},
      std::pair{WalkingEvidenceLane::finalizing, std::string_view("finalizing")},
      std::pair{WalkingEvidenceLane::final, std::string_view("final")},
  };
};

template <>
struct EnumNames<WalkingEvidenceUploadVisibility> {
  static constexpr std::array table{
      std::pair{WalkingEvidenceUploadVisibility::hidden, std::string_view("hidden")},
      std::pair{WalkingEvidenceUploadVisibility::standard, std::string_view("standard")},
      std::pair{WalkingEvidenceUploadVisibility::urgent, std::string_view("urgent")},
      std::pair{WalkingEvidenceUploadVisibility::closed, std::string_view("closed")},
  };
};

// The instants that place a kovi in its lane.
struct WalkingEvidenceSchedule {
  // The last six hours of the last day are "closing soon": late enough that
  // a member who has not uploaded should be nudged, early enough to walk and
  // upload before the day ends.
  static constexpr UnixMillis kClosingSoonLead = 6 * 60 * 60 * 1000;

  UnixMillis firstDayStart = 0;
  UnixMillis lastDayEnd = 0;
  // After this nothing is accepted (the context's `evidenceClosesAt`, or the
  // last day's end plus the verification window).
  UnixMillis evidenceClosesAt = 0;

  WalkingEvidenceLane laneAt(UnixMillis now) const;

  // Hidden before the kovi and once everything is in; standard while days
  // run; urgent when days are missing near or after the end; closed after.
  static WalkingEvidenceUploadVisibility visibility(WalkingEvidenceLane lane, bool hasMissingDays);
};

// Consecutive failed uploads and the earliest next attempt. A success clears
// it. Only transient failures (transport, 5xx, time-outs) count and double
// the wait: 1, 2, 4, 8, 16, 32 minutes, then an hour at most. The others
// wait a fixed time without counting: no data until the next 15-minute
// bucket closes (15 minutes); a refused or renewed device key 5 minutes; a
// rejected submission 1 minute (the day is re-read and rebuilt); a device
// that cannot make keys at all a day.
struct WalkingEvidenceBackoff {
  int consecutiveFailures = 0;
  std::optional<UnixMillis> nextAttemptAt;

  bool operator==(const WalkingEvidenceBackoff&) const = default;

  bool allowsAttempt(UnixMillis now) const { return !nextAttemptAt || now >= *nextAttemptAt; }
  WalkingEvidenceBackoff afterFailure(WalkingEvidenceFailure failure, UnixMillis now) const;
  static WalkingEvidenceBackoff afterSuccess() { return {}; }
};

}  // namespace kovi
