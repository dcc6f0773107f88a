#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"

namespace kovi {

// The progress line of a walking kovi's card.
struct WalkingProgressSummary {
  // The keys the card's stored progress lives under: when it was stored and
  // when the day it belongs to ends.
  static constexpr std::string_view kProgressAtKey = "walkingProgressAt";
  static constexpr std::string_view kDayEndsAtKey = "walkingProgressDayEndsAt";

  struct Stored {
    UnixMillis progressAt = 0;
    std::optional<UnixMillis> dayEndsAt;
  };

  // Steps walked: today's for a daily goal, the kovi's so far otherwise. The
  // card shows what was walked, so provisional buckets count here (unlike in
  // the judgement). Absent while no day has been measured.
  std::optional<double> steps;
  std::optional<std::int64_t> target;
  bool isDaily = false;
  // End of the kovi day that contains the summary's instant.
  std::optional<UnixMillis> dayEndsAt;
  // The kovi has started but its first counted day has not begun (a
  // "midnight" kovi before its first midnight).
  bool waitsForFirstDay = false;
  // The stored progress belongs to an earlier kovi day than now.
  bool needsDayRefresh = false;

  bool operator==(const WalkingProgressSummary&) const = default;

  static WalkingProgressSummary summarize(const WalkingKoviRules& rules, UnixMillis koviStart,
                                          std::span<const HealthEvidenceDayWindow> windows,
                                          const WalkingEvidenceEvaluation& evaluation, UnixMillis now,
                                          std::optional<Stored> stored = std::nullopt);

  // Whether progress stored as `stored` must be read again at `now`: its day
  // has ended, or it was stored before the kovi day that now runs began.
  static bool needsRefresh(const Stored& stored, std::span<const HealthEvidenceDayWindow> windows, UnixMillis now);
};

}  // namespace kovi
