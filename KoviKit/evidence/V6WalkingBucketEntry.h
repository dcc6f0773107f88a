#pragma once

#include <cstdint>
#include <string>

#include "KoviKit/evidence/V6WalkingObservation.h"

namespace kovi {

// One day of a walking submission.
struct V6WalkingBucketEntry {
  int day = 0;
  // The revision the server must currently hold for this day; 0 for a first
  // submission, so a concurrent change is refused instead of overwritten.
  std::int64_t expectedRevision = 0;
  V6WalkingObservation observation;

  bool operator==(const V6WalkingBucketEntry&) const = default;

  // The wire form: canonical JSON, keys in declared order.
  void write(CanonicalJsonWriter& writer) const;
  std::string json() const;
};

}  // namespace kovi
