#include "KoviKit/evidence/WalkingEvidenceLane.h"

#include <algorithm>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

constexpr UnixMillis kMinute = 60 * 1000;
constexpr UnixMillis kLongestTransientWait = 60 * kMinute;

UnixMillis transientWait(int failures) {
  // 2^6 minutes already passes the hour, so the shift never grows further.
  const int doublings = std::clamp(failures - 1, 0, 6);
  return std::min(kMinute << doublings, kLongestTransientWait);
}

}  // namespace

WalkingEvidenceLane WalkingEvidenceSchedule::laneAt(UnixMillis now) const {
  if (now >= evidenceClosesAt) return WalkingEvidenceLane::final;
  if (now < firstDayStart) return WalkingEvidenceLane::pending;
  if (now >= lastDayEnd) return WalkingEvidenceLane::finalizing;
  if (now >= lastDayEnd - kClosingSoonLead) return WalkingEvidenceLane::closingSoon;
  return WalkingEvidenceLane::open;
}

WalkingEvidenceUploadVisibility WalkingEvidenceSchedule::visibility(WalkingEvidenceLane lane, bool hasMissingDays) {
  using Visibility = WalkingEvidenceUploadVisibility;
  switch (lane) {
    case WalkingEvidenceLane::pending: return Visibility::hidden;
    case WalkingEvidenceLane::open: return Visibility::standard;
    case WalkingEvidenceLane::closingSoon: return hasMissingDays ? Visibility::urgent : Visibility::standard;
    case WalkingEvidenceLane::finalizing: return hasMissingDays ? Visibility::urgent : Visibility::hidden;
    case WalkingEvidenceLane::final: return Visibility::closed;
  }
  return Visibility::hidden;
}

WalkingEvidenceBackoff WalkingEvidenceBackoff::afterFailure(WalkingEvidenceFailure failure, UnixMillis now) const {
  WalkingEvidenceBackoff next = *this;
  UnixMillis wait = 0;
  switch (failure) {
    case WalkingEvidenceFailure::transient:
      next.consecutiveFailures = checkedAdd(consecutiveFailures, 1);
      wait = transientWait(next.consecutiveFailures);
      break;
    case WalkingEvidenceFailure::noData: wait = 15 * kMinute; break;
    case WalkingEvidenceFailure::attestation: wait = 5 * kMinute; break;
    case WalkingEvidenceFailure::rejected: wait = kMinute; break;
    case WalkingEvidenceFailure::attestationUnsupported: wait = 24 * 60 * kMinute; break;
  }
  next.nextAttemptAt = checkedAdd(now, wait);
  return next;
}

}  // namespace kovi
