#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"

namespace kovi::holds {

// The calendar arithmetic of the holds schedule, remembered. What a zone's
// calendar answers for a day string (whether it exists, a wall time on it, the
// day before it) never changes while the process runs, yet the agent asks the
// same questions every few seconds and ICU takes about a microsecond for each.
// Answers are kept per thread for the calendar's zone and the last few days;
// a clock for another zone starts afresh.
class MacHoldsDayClock {
 public:
  explicit MacHoldsDayClock(const Calendar& calendar);

  const Calendar& calendar() const { return calendar_; }

  // The local day of `date` (asked of the calendar every time).
  std::string dayString(Date date) const { return calendar_.dayString(date); }
  // Whether `day` names a day of the calendar.
  bool isDay(std::string_view day) const;
  // `minute` minutes into `day` on the wall clock; nullopt when the minute is
  // negative or beyond int (a sum of snapshot minutes can be) or the calendar
  // cannot compute it.
  std::optional<Date> dateAt(std::string_view day, std::int64_t minute) const;
  // The day before `day`.
  std::optional<std::string> dayBefore(std::string_view day) const;

 private:
  struct DayMemory;
  struct ZoneMemory;
  static ZoneMemory& zoneMemory();
  DayMemory& remembered(std::string_view day) const;

  const Calendar& calendar_;
};

}  // namespace kovi::holds
