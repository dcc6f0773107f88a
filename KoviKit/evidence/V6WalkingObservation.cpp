#include "KoviKit/evidence/V6WalkingObservation.h"

#include <charconv>
#include <cstdint>

#include "KoviKit/foundation/JsonFields.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

// A bucket's canonical text is about 60 bytes; reserving avoids regrowth.
constexpr std::size_t kBucketTextBytes = 64;

std::string wholeSteps(double amount) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<std::int64_t>(amount)).ptr;
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
  for (const HealthEvidenceBucket& bucket : day.buckets) {
    if (bucket.provisional) continue;
    observation.buckets.push_back({bucket.start.unixMillis(), bucket.end.unixMillis(), wholeSteps(bucket.amount)});
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

Decoded<V6WalkingBucket> JsonDecoder<V6WalkingBucket>::decode(const JsonView& json) {
  V6WalkingBucket bucket;
  auto read = readFields(json, field("start", bucket.start), field("end", bucket.end), field("steps", bucket.steps));
  if (!read) return std::unexpected(read.error());
  if (!isWireStepCount(bucket.steps)) {
    return std::unexpected(json.member("steps")->error("expected a non-negative decimal integer"));
  }
  return bucket;
}

Decoded<V6WalkingObservation> JsonDecoder<V6WalkingObservation>::decode(const JsonView& json) {
  V6WalkingObservation observation;
  auto read = readFields(json, field("sourcePolicy", observation.sourcePolicy),
                         field("windowStart", observation.windowStart), field("windowEnd", observation.windowEnd),
                         field("measurementCutoff", observation.measurementCutoff),
                         field("buckets", observation.buckets));
  if (!read) return std::unexpected(read.error());
  return observation;
}

Decoded<V6WalkingObservation::Content> JsonDecoder<V6WalkingObservation::Content>::decode(const JsonView& json) {
  V6WalkingObservation::Content content;
  auto read = readFields(json, field("observation", content.observation), field("note", content.note),
                         field("source", content.source), field("auto", content.isAuto));
  if (!read) return std::unexpected(read.error());
  if (json.contains("summary")) content.summary = json.json().at("summary");
  return content;
}

}  // namespace kovi
