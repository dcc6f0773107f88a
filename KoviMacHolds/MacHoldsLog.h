#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacHoldsDue.h"

namespace kovi::holds {

// Where the agent writes one line per decision ("hold study until 12:50 —
// hid Discord", "stand by: Kovi is running", "exit: nothing left to hold").
// The agent writes them to stderr; tests collect them.
using MacHoldsLog = std::function<void(std::string_view line)>;

// Writes each line to stderr.
MacHoldsLog standardErrorLog();

// The wall-clock time of `date` in `calendar`'s zone as "HH:MM".
std::string wallClockTime(Date date, const Calendar& calendar);

// "hold study until 12:50", "hold social until 00:00": the head of every line
// about a hold in force.
std::string holdLogLine(const MacHoldsDue& due, const Calendar& calendar);

// The current time and calendar, taken fresh at each evaluation; tests fix both.
struct MacHoldsClock {
  std::function<Date()> now;
  std::function<Calendar()> calendar;

  static MacHoldsClock system();
};

}  // namespace kovi::holds
