#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kovi {

// An instant as Unix epoch milliseconds: the representation of plans, rules
// and most wire records.
using UnixMillis = std::int64_t;

// Seconds between the Unix epoch and 2001-01-01T00:00:00Z, the reference date
// of the snapshot's `Date` values.
inline constexpr double kUnixSecondsAt2001 = 978307200.0;

// A point in time with sub-millisecond precision. Its JSON form (as the main
// app writes it) is floating seconds since 2001-01-01T00:00:00Z; inside, it
// keeps floating Unix milliseconds, which is also what ICU calendars take, so
// an instant that started as whole milliseconds converts back exactly.
class Date {
 public:
  constexpr Date() = default;

  static constexpr Date fromUnixMillis(double millis) { return Date(millis); }
  static constexpr Date fromSecondsSince2001(double seconds) {
    return Date((seconds + kUnixSecondsAt2001) * 1000.0);
  }
  static Date now();

  constexpr double unixMillisExact() const { return millis_; }
  constexpr double secondsSince2001() const { return millis_ / 1000.0 - kUnixSecondsAt2001; }

  // Unix milliseconds truncated toward zero. Traps on a non-finite or
  // out-of-range value: such a clock is a programming error.
  UnixMillis unixMillis() const;

  constexpr Date addingMillis(double millis) const { return Date(millis_ + millis); }

  constexpr auto operator<=>(const Date&) const = default;

 private:
  constexpr explicit Date(double millis) : millis_(millis) {}
  double millis_ = 0;
};

// Parses an ISO 8601 instant with an explicit offset or "Z", with or without
// seconds and fractional seconds: "2026-11-22T23:30:00+03:00",
// "2026-11-22T20:30Z", "2026-11-22T20:30:00.250Z".
std::optional<UnixMillis> parseInstant(std::string_view text);

}  // namespace kovi
