#include "KoviKit/foundation/Calendar.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

Calendar calendarIn(const char* zone) {
  auto calendar = Calendar::inZone(zone);
  EXPECT_TRUE(calendar.has_value()) << zone;
  return *calendar;
}

const nlohmann::json& cases() {
  static const nlohmann::json rows =
      parseJson(testing::testDataFile("foundation", "calendar.json")).value_or(nlohmann::json::object());
  return rows;
}

const std::string& text(const nlohmann::json& row, const char* key) { return row.at(key).get_ref<const std::string&>(); }

UnixMillis instant(const char* iso) {
  const auto parsed = parseInstant(iso);
  EXPECT_TRUE(parsed.has_value()) << iso;
  return parsed.value_or(0);
}

// Each row names its zone, day and minute; a null instant means no date.
TEST(CalendarTest, DateAtResolvesWallTimes) {
  for (const nlohmann::json& c : cases().at("dateAt")) {
    SCOPED_TRACE(c.dump());
    const auto resolved = calendarIn(text(c, "zone").c_str()).dateAt(text(c, "day"), c.at("minute").get<int>());
    EXPECT_EQ(resolved.transform(&Date::unixMillis),
              c.at("instant").is_null() ? std::nullopt : std::optional(instant(text(c, "instant").c_str())));
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
  for (const nlohmann::json& c : cases().at("parseInstant")) {
    const nlohmann::json& millis = c.at("millis");
    EXPECT_EQ(parseInstant(text(c, "text")), millis.is_null() ? std::nullopt : std::optional(millis.get<UnixMillis>()))
        << c.dump();
  }
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
