#include "KoviMacHolds/MacHoldsDayClock.h"

#include <gtest/gtest.h>

#include "tests/holds/HoldsTestSnapshots.h"

namespace kovi::holds {
namespace {

using namespace testing;

struct ClockCase {
  const char* zone;
  const char* day;
  std::int64_t minute;
};

// The remembered answers are the calendar's, even when clocks of different
// zones ask about the same day one after the other.
TEST(MacHoldsDayClock, RemembersTheCalendarsAnswersPerZone) {
  const ClockCase cases[] = {
      {"Europe/Istanbul", "2026-11-01", 90},   {"America/New_York", "2026-11-01", 90},
      {"Europe/Istanbul", "2026-11-01", 90},   {"America/New_York", "2026-03-08", 150},
      {"America/New_York", "2026-03-08", 1440}, {"America/New_York", "2026-03-08", 1440 + 420},
      {"Europe/Istanbul", "2026-02-30", 0},    {"Europe/Istanbul", "2026-11-22", -1},
      {"Europe/Istanbul", "2026-11-22", std::int64_t{1} << 40},
  };
  for (int round = 0; round < 2; ++round) {  // the second round answers from memory
    for (const ClockCase& c : cases) {
      SCOPED_TRACE(std::string(c.zone) + " " + c.day + " +" + std::to_string(c.minute) + " round " +
                   std::to_string(round));
      const Calendar calendar = calendarIn(c.zone);
      const MacHoldsDayClock clock(calendar);
      const bool inRange = c.minute >= 0 && c.minute <= std::numeric_limits<int>::max();
      EXPECT_EQ(clock.dateAt(c.day, c.minute),
                inRange ? calendar.dateAt(c.day, static_cast<int>(c.minute)) : std::nullopt);
      EXPECT_EQ(clock.isDay(c.day), calendar.parseDay(c.day).has_value());
      EXPECT_EQ(clock.dayBefore(c.day), calendar.shiftDay(-1, c.day));
    }
  }
}

}  // namespace
}  // namespace kovi::holds
