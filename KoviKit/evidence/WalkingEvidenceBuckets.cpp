#include "KoviKit/evidence/WalkingEvidenceBuckets.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

using Model = WalkingEvidenceBucketModel;

// Counts at or beyond 2^53 are not step counts, and would lose whole steps
// as doubles.
constexpr double kLargestCount = 9007199254740992.0;

bool isStepCount(double amount) { return std::isfinite(amount) && amount >= 0 && amount < kLargestCount; }

double secondsAfter(UnixMillis windowStart, Date edge) {
  return (edge.unixMillisExact() - static_cast<double>(windowStart)) / 1000.0;
}

WalkingEvidenceError misaligned(const HealthEvidenceDayWindow& window, std::size_t index,
                                const HealthEvidenceBucket& bucket) {
  char detail[200];
  std::snprintf(detail, sizeof detail,
                "day %d, bucket %zu: [%.4f s, %.4f s) after the day's start is not one cell of the %.0f-second grid",
                window.day, index, secondsAfter(window.start, bucket.start), secondsAfter(window.start, bucket.end),
                Model::kBucketSeconds);
  return {std::string(walkingErrorCode::bucketAlignmentInvalid), detail};
}

// Sort order that puts, among buckets of the same cell, the one to keep first.
bool keptFirst(const HealthEvidenceBucket& a, const HealthEvidenceBucket& b) {
  if (a.start != b.start) return a.start < b.start;
  if (a.provisional != b.provisional) return !a.provisional;
  return a.amount > b.amount;
}

}  // namespace

std::optional<std::int64_t> WalkingEvidenceBucketModel::gridIndex(UnixMillis windowStart, Date edge) {
  const double buckets = secondsAfter(windowStart, edge) / kBucketSeconds;
  if (!std::isfinite(buckets) || std::fabs(buckets) > 1e12) return std::nullopt;
  // std::round rounds halves away from zero.
  const double nearest = std::round(buckets);
  if (std::fabs(buckets - nearest) > kAlignmentTolerance) return std::nullopt;
  return static_cast<std::int64_t>(nearest);
}

UnixMillis WalkingEvidenceBucketModel::gridLine(UnixMillis windowStart, std::int64_t index) {
  return checkedAdd(windowStart, checkedMul(index, kBucketMillis));
}

UnixMillis WalkingEvidenceBucketModel::lastGridLineAtOrBefore(const HealthEvidenceDayWindow& window,
                                                              UnixMillis instant) {
  const UnixMillis bounded = std::clamp(instant, window.start, std::max(window.start, window.end));
  return gridLine(window.start, (bounded - window.start) / kBucketMillis);
}

std::optional<UnixMillis> WalkingEvidenceBuckets::SanitizedDay::lastClosedBucketEnd() const {
  for (auto bucket = buckets.rbegin(); bucket != buckets.rend(); ++bucket) {
    if (!bucket->provisional) return bucket->end.unixMillis();
  }
  return std::nullopt;
}

WalkingEvidenceDayValue WalkingEvidenceBuckets::SanitizedDay::value() const {
  return {window.day, window, total, closedTotal, lastClosedBucketEnd(), provisional, outcome};
}

std::expected<WalkingEvidenceBuckets::SanitizedDay, WalkingEvidenceError> WalkingEvidenceBuckets::sanitize(
    const HealthEvidenceDayWindow& window, HealthEvidenceReadOutcome outcome,
    std::span<const HealthEvidenceBucket> buckets, UnixMillis cutoff) {
  SanitizedDay day{window, {}, 0, 0, false, outcome};
  if (outcome != HealthEvidenceReadOutcome::measured) return day;

  const std::int64_t cells = std::max<UnixMillis>(0, window.end - window.start) / Model::kBucketMillis;
  day.buckets.reserve(buckets.size());
  for (std::size_t index = 0; index < buckets.size(); ++index) {
    const HealthEvidenceBucket& bucket = buckets[index];
    const auto first = Model::gridIndex(window.start, bucket.start);
    const auto last = Model::gridIndex(window.start, bucket.end);
    if (!first || !last || *last != *first + 1) return std::unexpected(misaligned(window, index, bucket));
    if (!isStepCount(bucket.amount) || *first < 0 || *last > cells) continue;
    const UnixMillis end = Model::gridLine(window.start, *last);
    day.buckets.push_back({Date::fromUnixMillis(static_cast<double>(Model::gridLine(window.start, *first))),
                           Date::fromUnixMillis(static_cast<double>(end)), bucket.amount,
                           bucket.provisional || end > cutoff});
  }

  if (!std::ranges::is_sorted(day.buckets, keptFirst)) std::ranges::sort(day.buckets, keptFirst);
  const auto duplicates = std::ranges::unique(day.buckets, {}, &HealthEvidenceBucket::start);
  day.buckets.erase(duplicates.begin(), duplicates.end());

  for (const HealthEvidenceBucket& bucket : day.buckets) {
    day.total += bucket.amount;
    if (bucket.provisional) {
      day.provisional = true;
    } else {
      day.closedTotal += bucket.amount;
    }
  }
  return day;
}

}  // namespace kovi
