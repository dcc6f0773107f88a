#pragma once

#include <expected>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingKoviRules.h"

namespace kovi {

// Cuts a walking kovi's days out of time.
//
// Anchored days start at the kovi's start instant and last exactly 24 hours.
// Calendar days run from one local midnight of the rules' `timezone` to the
// next, so a day across a daylight-saving change lasts 23 or 25 hours; without
// a `timezone` the device's own zone is used. With `firstDay` "today" day 0 is
// the calendar day that contains the start; with "midnight" it is the first
// whole calendar day after the start — the day that begins at the start
// itself when the kovi starts exactly at a local midnight.
class WalkingDayWindowPlanner {
 public:
  // Ten years of days; more than that is not a kovi but a malformed rule set,
  // and would cost unbounded memory.
  static constexpr int kMaximumDays = 3660;

  // The `durationDays` windows of a kovi that started at `start`, or why the
  // rules cannot yield them (no days, too many, an unknown time zone).
  static std::expected<std::vector<HealthEvidenceDayWindow>, std::string> plan(const WalkingKoviRules& rules,
                                                                               UnixMillis start);
};

}  // namespace kovi
