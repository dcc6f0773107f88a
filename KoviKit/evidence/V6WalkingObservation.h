#pragma once

#include <expected>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// One closed 15-minute bucket on the wire. Steps travel as a decimal string
// of a non-negative integer, so no floating rounding enters the signed
// payload.
struct V6WalkingBucket {
  UnixMillis start = 0;
  UnixMillis end = 0;
  std::string steps;
  bool operator==(const V6WalkingBucket&) const = default;
};

// One day's observation as it is submitted: the day window, the instant up to
// which buckets are closed and the closed buckets.
struct V6WalkingObservation {
  static constexpr std::string_view kSourcePolicy = "walking-health-buckets-v1";

  std::string sourcePolicy{kSourcePolicy};
  UnixMillis windowStart = 0;
  UnixMillis windowEnd = 0;
  UnixMillis measurementCutoff = 0;
  std::vector<V6WalkingBucket> buckets;

  // A day's check-in content as the server stores it.
  struct Content;

  bool operator==(const V6WalkingObservation&) const = default;

  // The observation of a sanitised day read at `cutoff`: its closed buckets,
  // and as `measurementCutoff` the last grid line at or before the cutoff
  // (the window's end once the day is over). Whole grid lines keep the
  // payload the same for every read of the same data, so re-reading an
  // unchanged day yields an unchanged hash. Fails with the read's code when
  // the day was not measured, and with "walking_no_closed_bucket" when no
  // bucket has closed yet.
  static std::expected<V6WalkingObservation, WalkingEvidenceError> fromDay(
      const WalkingEvidenceBuckets::SanitizedDay& day, UnixMillis cutoff);

  // The wire form: canonical JSON, keys in declared order.
  void write(CanonicalJsonWriter& writer) const;
  // The content record hashed into the day's payload: the same data with the
  // cutoff under the key `closedThrough`, as canonical JSON.
  std::string payloadText() const;
  // Lowercase hex SHA-256 of `payloadText()`.
  std::string payloadHash() const;
};

struct V6WalkingObservation::Content {
  // The shared check-in summary of the group features, passed through as is.
  nlohmann::json summary;
  V6WalkingObservation observation;
  std::string note;
  std::string source;
  // Produced by the automatic uploader rather than by the user (JSON key "auto").
  bool isAuto = false;
  bool operator==(const Content&) const = default;
};

// The error a day read with `outcome` gives when evidence is wanted from it.
WalkingEvidenceError readOutcomeError(HealthEvidenceReadOutcome outcome);

// Whether `steps` is a non-negative decimal integer without leading zeros
// that fits 64 bits.
bool isWireStepCount(std::string_view steps);

// Wire records from the service: unknown keys are ignored (a newer service
// may send more), steps must be wire step counts.
template <>
struct JsonRecordFields<V6WalkingBucket> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("start", &V6WalkingBucket::start),
                                            field("end", &V6WalkingBucket::end),
                                            field("steps", &V6WalkingBucket::steps)};
  static Decoded<void> validate(const V6WalkingBucket& bucket, const JsonView& json);
};

template <>
struct JsonRecordFields<V6WalkingObservation> : LenientJsonRecord {
  using O = V6WalkingObservation;
  static constexpr auto fields =
      std::tuple{field("sourcePolicy", &O::sourcePolicy), field("windowStart", &O::windowStart),
                 field("windowEnd", &O::windowEnd), field("measurementCutoff", &O::measurementCutoff),
                 field("buckets", &O::buckets)};
};

template <>
struct JsonRecordFields<V6WalkingObservation::Content> : LenientJsonRecord {
  using C = V6WalkingObservation::Content;
  static constexpr auto fields =
      std::tuple{field("summary", &C::summary), field("observation", &C::observation), field("note", &C::note),
                 field("source", &C::source), field("auto", &C::isAuto)};
};

}  // namespace kovi
