#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <span>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"

namespace kovi {

// The 15-minute grid every kovi day is measured on, starting at the day
// window's start.
struct WalkingEvidenceBucketModel {
  static constexpr double kBucketSeconds = 900.0;
  static constexpr UnixMillis kBucketMillis = 900'000;
  // How far, in buckets, an edge may sit from a grid line and still count as
  // on it: 1e-6 of 900 s is 0.9 ms, enough for floating instants.
  static constexpr double kAlignmentTolerance = 0.000001;

  // The grid line `edge` sits on, counted in buckets from `windowStart`, or
  // nullopt when the edge is off the grid.
  static std::optional<std::int64_t> gridIndex(UnixMillis windowStart, Date edge);
  static bool isAligned(UnixMillis windowStart, Date edge) { return gridIndex(windowStart, edge).has_value(); }
  // The instant of grid line `index`.
  static UnixMillis gridLine(UnixMillis windowStart, std::int64_t index);
  // The last grid line at or before `instant` (clamped to the window).
  static UnixMillis lastGridLineAtOrBefore(const HealthEvidenceDayWindow& window, UnixMillis instant);
};

// One day's step value as the evaluation and the card see it.
struct WalkingEvidenceDayValue {
  int day = 0;
  HealthEvidenceDayWindow window;
  double total = 0;
  double closedTotal = 0;
  std::optional<UnixMillis> lastClosedBucketEnd;
  bool provisional = false;
  HealthEvidenceReadOutcome outcome = HealthEvidenceReadOutcome::measured;
  bool operator==(const WalkingEvidenceDayValue&) const = default;
};

// Turns a day's raw read into the buckets that count.
//
// What is kept:
// - Only a `measured` read has buckets; any other outcome keeps none (no
//   readable data is never zero steps: it stays a missing day).
// - Every bucket must span exactly one cell of the day's grid; a bucket with
//   an edge off the grid, or one covering more or less than a cell, refuses
//   the whole day ("walking_bucket_alignment_invalid"): a reader that cut it
//   so is wrong, and no count from it can be trusted.
// - A bucket outside the window — before the start or past the end, or
//   straddling the end of a window whose length is not whole cells — belongs
//   to a neighbouring day and is left out.
// - Counts that are negative, not finite or beyond 2^53 cannot be step counts;
//   such a bucket is left out as if the store had reported nothing for it.
// - Counts are kept as read (a store may report fractions); the totals are
//   their sums, and whole steps are formed only for the wire, from the
//   running total (see `V6WalkingObservation::fromDay`).
// - A cell reported twice keeps one bucket: a closed one over a provisional
//   one, and then the larger count, since late-arriving samples only ever
//   add steps. The choice does not depend on the order of the read.
// - Kept buckets are snapped to their exact grid lines and sorted by start;
//   a bucket whose end lies after the cutoff is provisional.
class WalkingEvidenceBuckets {
 public:
  struct SanitizedDay {
    HealthEvidenceDayWindow window;
    std::vector<HealthEvidenceBucket> buckets;
    double total = 0;
    double closedTotal = 0;
    bool provisional = false;
    HealthEvidenceReadOutcome outcome = HealthEvidenceReadOutcome::measured;
    bool operator==(const SanitizedDay&) const = default;

    // End of the last closed bucket.
    std::optional<UnixMillis> lastClosedBucketEnd() const;
    bool hasClosedBucket() const { return lastClosedBucketEnd().has_value(); }
    WalkingEvidenceDayValue value() const;
  };

  static std::expected<SanitizedDay, WalkingEvidenceError> sanitize(const HealthEvidenceDayWindow& window,
                                                                    HealthEvidenceReadOutcome outcome,
                                                                    std::span<const HealthEvidenceBucket> buckets,
                                                                    UnixMillis cutoff);
};

}  // namespace kovi
