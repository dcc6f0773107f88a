#include "KoviKit/foundation/Calendar.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

namespace kovi {
namespace {

Calendar calendarIn(const char* zone) {
  auto calendar = Calendar::inZone(zone);
  EXPECT_TRUE(calendar.has_value()) << zone;
  return *calendar;
}

UnixMillis instant(const char* iso) {
  const auto parsed = parseInstant(iso);
  EXPECT_TRUE(parsed.has_value()) << iso;
  return parsed.value_or(0);
}

TEST(CalendarTest, DateAtResolvesWallTimes) {
  const struct {
    const char* zone;
    const char* day;
    int minute;
    std::optional<const char*> expected;  // ISO instant, or nullopt for no date
  } cases[] = {
      {"Europe/Istanbul", "2026-11-22", 0, "2026-11-22T00:00:00+03:00"},
      // 1440 and beyond count into the following days.
      {"Europe/Istanbul", "2026-11-22", 1440, "2026-11-23T00:00:00+03:00"},
      {"Europe/Istanbul", "2026-11-22", 1440 + 420, "2026-11-23T07:00:00+03:00"},
      {"Europe/Istanbul", "2026-12-31", 1440, "2027-01-01T00:00:00+03:00"},
      // 02:30 does not exist on 2026-03-08 in New York: the next existing time is 03:00.
      {"America/New_York", "2026-03-08", 150, "2026-03-08T03:00:00-04:00"},
      // 01:30 happens twice on 2026-11-01: the first occurrence (daylight time) wins.
      {"America/New_York", "2026-11-01", 90, "2026-11-01T01:30:00-04:00"},
      {"America/New_York", "2026-11-01", 1440, "2026-11-02T00:00:00-05:00"},
      {"Europe/Istanbul", "2026-02-30", 0, std::nullopt}, {"Europe/Istanbul", "2026-11-22", -1, std::nullopt},
      {"Europe/Istanbul", "2026-11-2", 0, std::nullopt}, {"Europe/Istanbul", "+026-11-22", 0, std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.zone) + " " + c.day + " +" + std::to_string(c.minute));
    EXPECT_EQ(calendarIn(c.zone).dateAt(c.day, c.minute).transform(&Date::unixMillis), c.expected.transform(instant));
  }
}

TEST(CalendarTest, DayStringFollowsTheZone) {
  const Date instantUtc = Date::fromUnixMillis(static_cast<double>(instant("2026-11-22T22:30:00Z")));
  EXPECT_EQ(calendarIn("Europe/Istanbul").dayString(instantUtc), "2026-11-23");
  EXPECT_EQ(calendarIn("America/New_York").dayString(instantUtc), "2026-11-22");
}

TEST(CalendarTest, ShiftDayCrossesMonthsYearsAndLeapDays) {
  const Calendar calendar = calendarIn("Europe/Istanbul");
  EXPECT_EQ(calendar.shiftDay(-1, "2026-03-01"), "2026-02-28");
  EXPECT_EQ(calendar.shiftDay(-1, "2028-03-01"), "2028-02-29");
  EXPECT_EQ(calendar.shiftDay(1, "2026-12-31"), "2027-01-01");
  EXPECT_EQ(calendar.shiftDay(365, "2026-01-01"), "2027-01-01");
  EXPECT_EQ(calendar.shiftDay(1, "not a day"), std::nullopt);
}

TEST(CalendarTest, DaysAroundDaylightSavingChangesAreShortAndLong) {
  const Calendar calendar = calendarIn("America/New_York");
  const auto hoursOf = [&](const char* day) {
    const auto start = calendar.parseDay(day);
    const auto end = calendar.dateAt(day, 1440);
    return (end->unixMillis() - start->unixMillis()) / 3'600'000;
  };
  EXPECT_EQ(hoursOf("2026-03-08"), 23);
  EXPECT_EQ(hoursOf("2026-11-01"), 25);
  EXPECT_EQ(hoursOf("2026-11-22"), 24);
}

TEST(CalendarTest, UnknownZonesAreRefusedAndCopiesShareNoState) {
  EXPECT_FALSE(Calendar::inZone("Mars/Olympus_Mons").has_value());
  EXPECT_TRUE(Calendar::isKnownZone("UTC"));
  EXPECT_TRUE(Calendar::isKnownZone("Europe/Istanbul"));
  const Calendar berlin = calendarIn("Europe/Berlin");
  Calendar copy = berlin;
  copy = calendarIn("Asia/Tokyo");
  EXPECT_EQ(berlin.zoneID(), "Europe/Berlin");
  EXPECT_EQ(copy.zoneID(), "Asia/Tokyo");
}

TEST(CalendarTest, ParseInstantReadsIso8601WithOffsets) {
  const struct {
    const char* text;
    std::optional<UnixMillis> expected;
  } cases[] = {{"2026-11-22T23:30:00+03:00", 1795379400000}, {"2026-11-22T20:30:00Z", 1795379400000},
               {"2026-11-22T20:30Z", 1795379400000},         {"2026-11-22T20:30:00.250Z", 1795379400250},
               {"2026-11-22T20:30:00", std::nullopt},        {"2026-11-22", std::nullopt},
               {"2026-11-22T20:30:00Zjunk", std::nullopt},   {"", std::nullopt}};
  for (const auto& c : cases) EXPECT_EQ(parseInstant(c.text), c.expected) << '"' << c.text << '"';
}

TEST(DateTest, ConvertsBetweenTheTwoEpochsExactlyAndTrapsNonFiniteInstants) {
  const Date date = Date::fromSecondsSince2001(0);
  EXPECT_EQ(date.unixMillis(), 978307200000);
  EXPECT_EQ(Date::fromUnixMillis(1795379400001.0).unixMillis(), 1795379400001);
  EXPECT_DOUBLE_EQ(Date::fromUnixMillis(978307201500.0).secondsSince2001(), 1.5);
  EXPECT_DEATH((void)Date::fromUnixMillis(std::numeric_limits<double>::infinity()).unixMillis(), "non-finite");
}

}  // namespace
}  // namespace kovi
