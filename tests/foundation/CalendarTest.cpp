#include "KoviKit/foundation/Calendar.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <ostream>
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

struct DateAtCase {
  friend void PrintTo(const DateAtCase& c, std::ostream* out) { *out << c.zone << " " << c.day << " +" << c.minute; }
  const char* zone;
  const char* day;
  int minute;
  std::optional<const char*> expected;  // ISO instant, or nullopt for no date
};

class DateAtTest : public ::testing::TestWithParam<DateAtCase> {};

TEST_P(DateAtTest, ResolvesWallTimes) {
  const DateAtCase& c = GetParam();
  const auto date = calendarIn(c.zone).dateAt(c.day, c.minute);
  if (!c.expected) {
    EXPECT_FALSE(date.has_value());
    return;
  }
  ASSERT_TRUE(date.has_value());
  EXPECT_EQ(date->unixMillis(), instant(*c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Calendar, DateAtTest,
    ::testing::Values(
        DateAtCase{"Europe/Istanbul", "2026-11-22", 0, "2026-11-22T00:00:00+03:00"},
        DateAtCase{"Europe/Istanbul", "2026-11-22", 750, "2026-11-22T12:30:00+03:00"},
        // 1440 and beyond count into the following days.
        DateAtCase{"Europe/Istanbul", "2026-11-22", 1440, "2026-11-23T00:00:00+03:00"},
        DateAtCase{"Europe/Istanbul", "2026-11-22", 1440 + 420, "2026-11-23T07:00:00+03:00"},
        DateAtCase{"Europe/Istanbul", "2026-12-31", 1440, "2027-01-01T00:00:00+03:00"},
        // 02:30 does not exist on 2026-03-08 in New York: the next existing time is 03:00.
        DateAtCase{"America/New_York", "2026-03-08", 150, "2026-03-08T03:00:00-04:00"},
        // 01:30 happens twice on 2026-11-01: the first occurrence (daylight time) wins.
        DateAtCase{"America/New_York", "2026-11-01", 90, "2026-11-01T01:30:00-04:00"},
        DateAtCase{"America/New_York", "2026-11-01", 1440, "2026-11-02T00:00:00-05:00"},
        DateAtCase{"Europe/Istanbul", "2026-02-30", 0, std::nullopt},
        DateAtCase{"Europe/Istanbul", "2026-13-01", 0, std::nullopt},
        DateAtCase{"Europe/Istanbul", "2026-11-22", -1, std::nullopt},
        DateAtCase{"Europe/Istanbul", "2026-11-2", 0, std::nullopt},
        DateAtCase{"Europe/Istanbul", "2026/11/22", 0, std::nullopt},
        DateAtCase{"Europe/Istanbul", "+026-11-22", 0, std::nullopt}));

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

TEST(CalendarTest, UnknownZonesAreRefused) {
  EXPECT_FALSE(Calendar::inZone("Mars/Olympus_Mons").has_value());
  EXPECT_TRUE(Calendar::isKnownZone("UTC"));
  EXPECT_TRUE(Calendar::isKnownZone("Europe/Istanbul"));
}

TEST(CalendarTest, CopiesDoNotShareState) {
  const Calendar berlin = calendarIn("Europe/Berlin");
  Calendar copy = berlin;
  copy = calendarIn("Asia/Tokyo");
  EXPECT_EQ(berlin.zoneID(), "Europe/Berlin");
  EXPECT_EQ(copy.zoneID(), "Asia/Tokyo");
}

struct InstantCase {
  friend void PrintTo(const InstantCase& c, std::ostream* out) { *out << '"' << c.text << '"'; }
  const char* text;
  std::optional<UnixMillis> expected;
};

class ParseInstantTest : public ::testing::TestWithParam<InstantCase> {};

TEST_P(ParseInstantTest, ReadsIso8601WithOffsets) {
  EXPECT_EQ(parseInstant(GetParam().text), GetParam().expected) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Time, ParseInstantTest,
    ::testing::Values(InstantCase{"2026-11-22T23:30:00+03:00", 1795379400000},
                      InstantCase{"2026-11-22T20:30:00Z", 1795379400000},
                      InstantCase{"2026-11-22T20:30Z", 1795379400000},
                      InstantCase{"2026-11-22T20:30:00.250Z", 1795379400250},
                      InstantCase{"2026-11-22T20:30:00", std::nullopt},
                      InstantCase{"2026-11-22", std::nullopt},
                      InstantCase{"2026-11-22T20:30:00Zjunk", std::nullopt},
                      InstantCase{"", std::nullopt}));

TEST(DateTest, ConvertsBetweenTheTwoEpochsExactly) {
  const Date date = Date::fromSecondsSince2001(0);
  EXPECT_EQ(date.unixMillis(), 978307200000);
  EXPECT_EQ(Date::fromUnixMillis(1795379400001.0).unixMillis(), 1795379400001);
  EXPECT_DOUBLE_EQ(Date::fromUnixMillis(978307201500.0).secondsSince2001(), 1.5);
}

TEST(DateTest, NonFiniteInstantsTrap) {
  EXPECT_DEATH((void)Date::fromUnixMillis(std::numeric_limits<double>::infinity()).unixMillis(), "non-finite");
}

}  // namespace
}  // namespace kovi
