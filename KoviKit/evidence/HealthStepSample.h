#pragma once

#include <expected>
#include <functional>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceReadRequest.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// One step sample as a health store keeps it: `value` steps taken evenly over
// [start, end) in Unix milliseconds, recorded by the device `source`.
struct HealthStepSample {
  UnixMillis start = 0;
  UnixMillis end = 0;
  double value = 0;
  std::string source;
  bool operator==(const HealthStepSample&) const = default;
};

// Instants a health store can hold: years 0001 to 9999. Keeping to them
// means no difference or sum of two instants can overflow.
inline constexpr UnixMillis kEarliestHealthInstant = -62135596800000;  // 0001-01-01T00:00:00Z
inline constexpr UnixMillis kLatestHealthInstant = 253402300799999;    // 9999-12-31T23:59:59.999Z
constexpr bool isHealthInstant(UnixMillis instant) {
  return instant >= kEarliestHealthInstant && instant <= kLatestHealthInstant;
}

// The small sample format for tests and hand-made inputs:
// [{"start": 1772433667000, "end": 1772433967000, "value": 412, "source": "Apple Watch"}].
template <>
struct JsonRecordFields<HealthStepSample> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("start", &HealthStepSample::start), field("end", &HealthStepSample::end),
                 field("value", &HealthStepSample::value), field("source", &HealthStepSample::source)};
};

// How far a long read has got, for a progress line: bytes done of the total
// (0 when the total is not known).
using HealthReadProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;

// The health store on this device: step samples over an interval and what it
// says about the permission prompt. The platform's store lives behind this;
// the portable one reads a Health export.
class HealthEvidenceStore {
 public:
  virtual ~HealthEvidenceStore() = default;

  virtual HealthEvidenceAuthorization authorization() const = 0;

  // Every step sample that overlaps [from, to). The error says why the store
  // could not be read.
  virtual std::expected<std::vector<HealthStepSample>, std::string> stepSamples(UnixMillis from, UnixMillis to) = 0;
};

}  // namespace kovi
