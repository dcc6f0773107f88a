#include "KoviKit/evidence/V6WalkingObservation.h"

#include <charconv>
#include <cmath>
#include <cstdint>

#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

// A bucket's canonical text is about 60 bytes; reserving avoids regrowth.
constexpr std::size_t kBucketTextBytes = 64;

std::string decimalText(std::int64_t steps) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, steps).ptr;
  return std::string(digits, end);
}

// The record shape the wire form and the payload share; only the cutoff's
// key differs.
void writeRecord(CanonicalJsonWriter& writer, const V6WalkingObservation& observation, std::string_view cutoffKey) {
  writer.beginObject();
  writer.key("sourcePolicy").value(observation.sourcePolicy);
  writer.key("windowStart").value(observation.windowStart);
  writer.key("windowEnd").value(observation.windowEnd);
  writer.key(cutoffKey).value(observation.measurementCutoff);
  writer.key("buckets").beginArray();
  for (const V6WalkingBucket& bucket : observation.buckets) {
    writer.beginObject().key("start").value(bucket.start).key("end").value(bucket.end);
    writer.key("steps").value(bucket.steps).endObject();
  }
  writer.endArray();
  writer.endObject();
}

}  // namespace

WalkingEvidenceError readOutcomeError(HealthEvidenceReadOutcome outcome) {
  std::string_view code = walkingErrorCode::readFailed;
  switch (outcome) {
    case HealthEvidenceReadOutcome::measured:
    case HealthEvidenceReadOutcome::noReadableData: code = walkingErrorCode::noReadableData; break;
    case HealthEvidenceReadOutcome::healthKitUnavailable:
    case HealthEvidenceReadOutcome::authorizationRequestNotCompleted:
      code = walkingErrorCode::healthSharingDisabled;
      break;
    case HealthEvidenceReadOutcome::temporarilyUnavailable:
    case HealthEvidenceReadOutcome::readFailed: break;
  }
  return {std::string(code), "the health store read ended " + std::string(enumName(outcome))};
}

bool isWireStepCount(std::string_view steps) {
  if (steps.empty() || (steps.size() > 1 && steps.front() == '0')) return false;
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(steps.data(), steps.data() + steps.size(), value);
  return error == std::errc() && end == steps.data() + steps.size() && value >= 0;
}

std::expected<V6WalkingObservation, WalkingEvidenceError> V6WalkingObservation::fromDay(
    const WalkingEvidenceBuckets::SanitizedDay& day, UnixMillis cutoff) {
  if (day.outcome != HealthEvidenceReadOutcome::measured) return std::unexpected(readOutcomeError(day.outcome));
  if (!day.hasClosedBucket()) {
    return std::unexpected(WalkingEvidenceError{std::string(walkingErrorCode::noClosedBucket),
                                                "day " + std::to_string(day.window.day) + " has no closed bucket yet"});
  }
  V6WalkingObservation observation;
  observation.windowStart = day.window.start;
  observation.windowEnd = day.window.end;
  observation.measurementCutoff = WalkingEvidenceBucketModel::lastGridLineAtOrBefore(day.window, cutoff);
  observation.buckets.reserve(day.buckets.size());
  // Whole steps without losing any: each bucket carries what it adds to the
  // whole part of the running total, so the day's signed steps are the whole
  // part of its closed total however the fractions of the buckets fall.
  // Amounts are below 2^53 and a day has at most a hundred buckets, so the
  // running total stays far inside the int64 range.
  double runningTotal = 0;
  std::int64_t stepsSoFar = 0;
  for (const HealthEvidenceBucket& bucket : day.buckets) {
    if (bucket.provisional) continue;
    runningTotal += bucket.amount;
    const auto wholeTotal = static_cast<std::int64_t>(std::floor(runningTotal));
    observation.buckets.push_back(
        {bucket.start.unixMillis(), bucket.end.unixMillis(), decimalText(wholeTotal - stepsSoFar)});
    stepsSoFar = wholeTotal;
  }
  return observation;
}

void V6WalkingObservation::write(CanonicalJsonWriter& writer) const { writeRecord(writer, *this, "measurementCutoff"); }

std::string V6WalkingObservation::payloadText() const {
  CanonicalJsonWriter writer;
  writer.reserve(128 + buckets.size() * kBucketTextBytes);
  writeRecord(writer, *this, "closedThrough");
  return writer.take();
}

std::string V6WalkingObservation::payloadHash() const { return sha256Hex(payloadText()); }

Decoded<void> JsonRecordFields<V6WalkingBucket>::validate(const V6WalkingBucket& bucket, const JsonView& json) {
  if (isWireStepCount(bucket.steps)) return {};
  return std::unexpected(json.child("steps", json.json()).error("expected a non-negative decimal integer"));
}

}  // namespace kovi
