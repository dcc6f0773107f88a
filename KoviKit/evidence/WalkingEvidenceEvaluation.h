#pragma once

#include <map>
#include <optional>
#include <span>
#include <vector>

#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "KoviKit/evidence/WalkingKoviRules.h"

namespace kovi {

// Where one member stands against the rules, as far as the evidence read so
// far can tell. It is judged on closed totals — the buckets that are sent —
// never on provisional ones. The server and the on-chain registry are the
// judges of record; this is what the member is shown and what decides what
// to send.
enum class WalkingEvidenceVerdict {
  open,    // not decided yet: days to come, missing or provisional days
  met,     // goal met, race target reached, or ranked in a highest-total race
  failed,  // cannot be met any more
};

template <>
struct EnumNames<WalkingEvidenceVerdict> {
  static constexpr std::array table{
      std::pair{WalkingEvidenceVerdict::open, std::string_view("open")},
      std::pair{WalkingEvidenceVerdict::met, std::string_view("met")},
      std::pair{WalkingEvidenceVerdict::failed, std::string_view("failed")},
  };
};

struct WalkingEvidenceEvaluation {
  std::map<int, WalkingEvidenceDayValue> days;
  std::optional<UnixMillis> reachedAt;
  std::optional<int> reachedDay;
  // Every day of the windows without a usable value: not begun, no read, or
  // an outcome other than `measured`. They are not zero steps; a begun day
  // stays missing until the verification window closes, and counts as a
  // failed day only after that.
  std::vector<int> missingDays;
  std::vector<int> provisionalDays;
  // Of the missing days, those whose window had not begun at the
  // evaluation's instant.
  std::vector<int> upcomingDays;
  // The sum of the measured days' closed totals.
  double closedTotal = 0;
  // Days whose closed total reached the step target (a daily goal's count).
  int successfulDays = 0;
  WalkingEvidenceVerdict verdict = WalkingEvidenceVerdict::open;
  // Missing data is accepted until then: the last day's end plus
  // `verificationWindowHours`.
  UnixMillis evidenceClosesAt = 0;

  bool operator==(const WalkingEvidenceEvaluation&) const = default;

  // Evaluates one member's sanitised days against `windows` (the kovi's day
  // windows in day order) at the instant `now`. Days of `sanitized` that are
  // not among the windows are ignored. A rule set without a `stepTarget`
  // cannot be met or failed on a target and stays open.
  static WalkingEvidenceEvaluation evaluate(const WalkingKoviRules& rules,
                                            std::span<const HealthEvidenceDayWindow> windows,
                                            std::span<const WalkingEvidenceBuckets::SanitizedDay> sanitized,
                                            UnixMillis now);
};

}  // namespace kovi
