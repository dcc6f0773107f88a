#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// One kovi day cut out of time: day 0 is the first kovi day; [start, end) in
// Unix milliseconds.
struct HealthEvidenceDayWindow {
  int day = 0;
  UnixMillis start = 0;
  UnixMillis end = 0;
  bool operator==(const HealthEvidenceDayWindow&) const = default;
};

// A step count over one interval as the health store reported it. Edges are
// floating instants because the store reports them so; the bucket model
// decides whether they sit on the day's 15-minute grid.
struct HealthEvidenceBucket {
  Date start;
  Date end;
  double amount = 0;
  // Not yet closed: the bucket's end lies after the reading's cutoff.
  bool provisional = false;
  bool operator==(const HealthEvidenceBucket&) const = default;
};

// How reading one day from the health store went.
enum class HealthEvidenceReadOutcome {
  measured,
  noReadableData,
  temporarilyUnavailable,
  readFailed,
  healthKitUnavailable,
  authorizationRequestNotCompleted,
};

template <>
struct EnumNames<HealthEvidenceReadOutcome> {
  static constexpr std::array table{
      std::pair{HealthEvidenceReadOutcome::measured, std::string_view("measured")},
      std::pair{HealthEvidenceReadOutcome::noReadableData, std::string_view("noReadableData")},
      std::pair{HealthEvidenceReadOutcome::temporarilyUnavailable, std::string_view("temporarilyUnavailable")},
      std::pair{HealthEvidenceReadOutcome::readFailed, std::string_view("readFailed")},
      std::pair{HealthEvidenceReadOutcome::healthKitUnavailable, std::string_view("healthKitUnavailable")},
      std::pair{HealthEvidenceReadOutcome::authorizationRequestNotCompleted,
                std::string_view("authorizationRequestNotCompleted")},
  };
};

// One day's read: its outcome and, when measured, the buckets.
struct HealthEvidenceDayRead {
  int day = 0;
  HealthEvidenceReadOutcome outcome = HealthEvidenceReadOutcome::measured;
  std::vector<HealthEvidenceBucket> buckets;
  bool operator==(const HealthEvidenceDayRead&) const = default;
};

// The read of `day` in `reads`, if there is one.
const HealthEvidenceDayRead* findDayRead(const std::vector<HealthEvidenceDayRead>& reads, int day);

// JSON forms, as the `kovi` tool reads them from a reads file. Instants are
// Unix milliseconds (a number, fractions allowed) or ISO 8601 text with an
// offset; `provisional` may be left out (false).
template <>
struct JsonDecoder<HealthEvidenceBucket> {
  static Decoded<HealthEvidenceBucket> decode(const JsonView& json);
};

template <>
struct JsonDecoder<HealthEvidenceDayRead> {
  static Decoded<HealthEvidenceDayRead> decode(const JsonView& json);
};

}  // namespace kovi
