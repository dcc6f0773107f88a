#include "KoviMacHolds/MacHoldsSchedule.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/holds/HoldsTestSnapshots.h"
#include "tests/support/TestData.h"

namespace kovi::holds {
namespace {

using namespace testing;

const nlohmann::json& scheduleData() {
  static const nlohmann::json data = parseJson(kovi::testing::testDataFile("holds", "schedule-cases.json")).value();
  return data;
}

const nlohmann::json& cases(const char* table, std::size_t count) {
  EXPECT_EQ(scheduleData().at(table).size(), count) << table;
  return scheduleData().at(table);
}

const char* text(const nlohmann::json& row, const char* key) {
  return row.at(key).get_ref<const std::string&>().c_str();
}

// A row's snapshot: one of the base documents with the row's changes merged in
// (a null removes a field), decoded as the agent decodes its file.
MacHoldsSnapshot snapshotOf(const nlohmann::json& row) {
  nlohmann::json document = scheduleData().at("bases").at(row.at("base").get<std::string>());
  if (row.contains("patch")) document.merge_patch(row.at("patch"));
  const auto decoded = decodeMacHoldsSnapshot(document.dump());
  EXPECT_TRUE(decoded.has_value()) << document.dump();
  return decoded.value_or(MacHoldsSnapshot{});
}

// Rows name the zone, the snapshot and the moment; they expect the hold due,
// its end and the start of every window containing the moment, in the order
// found. A night 23:00–07:00 is last night's after midnight; equal start and
// end is a full day; of overlapping windows the one that began first decides;
// the last exam night is seen through; an open Social span keeps Social open
// while at least 1 ms is left; New York's spring gap and repeated hour shift
// and stretch the windows they cross.
TEST(MacHoldsScheduleTest, FindsTheHoldAndItsEnd) {
  for (const nlohmann::json& c : cases("due", 21)) {
    SCOPED_TRACE(text(c, "name"));
    const Calendar calendar = calendarIn(text(c, "zone"));
    const MacHoldsSnapshot snapshot = snapshotOf(c);
    const Date now = at(text(c, "now"));
    const MacHoldsDue due = MacHoldsSchedule::due(snapshot, now, calendar);
    EXPECT_EQ(enumName(due.kind), c.at("kind").get<std::string>());
    EXPECT_EQ(due.until.transform(&Date::unixMillis),
              c.at("until").is_null() ? std::nullopt : std::optional(millisAt(text(c, "until"))));
    std::vector<UnixMillis> starts, expected;
    for (const auto& window : MacHoldsSchedule::windows(snapshot, now, calendar)) {
      starts.push_back(window.start.unixMillis());
      EXPECT_LE(window.start, now);
      EXPECT_LT(now, window.end);
    }
    for (const nlohmann::json& start : c.at("windowStarts")) {
      expected.push_back(millisAt(start.get_ref<const std::string&>().c_str()));
    }
    EXPECT_EQ(starts, expected);
  }
}

TEST(MacHoldsScheduleTest, CountsOnlyTodaysAllowanceRecord) {
  const Calendar istanbul = calendarIn("Europe/Istanbul");
  for (const nlohmann::json& c : cases("allowanceToday", 7)) {
    const nlohmann::json& since = c.at("expected").at("since");
    const MacHoldsSchedule::AllowanceToday expected{
        text(c.at("expected"), "day"), c.at("expected").at("usedMS").get<std::int64_t>(),
        since.is_null() ? std::nullopt : std::optional(since.get<std::int64_t>())};
    EXPECT_EQ(MacHoldsSchedule::allowanceToday(snapshotOf(c), at("2026-11-22T12:00:00+03:00"), istanbul), expected)
        << text(c, "name");
  }
}

// A row without a base has no snapshot at all. The start day counts on its
// own: with the end still ahead the agent stands by, though the week's range
// never matches.
TEST(MacHoldsScheduleTest, KeepsTheAgentOnlyWhileSomethingIsLeft) {
  const Calendar istanbul = calendarIn("Europe/Istanbul");
  for (const nlohmann::json& c : cases("isActive", 9)) {
    const std::optional<MacHoldsSnapshot> snapshot = c.contains("base") ? std::optional(snapshotOf(c)) : std::nullopt;
    EXPECT_EQ(MacHoldsSchedule::isActive(snapshot ? &*snapshot : nullptr, at(text(c, "now")), istanbul),
              c.at("active").get<bool>())
        << text(c, "name");
  }
}

}  // namespace
}  // namespace kovi::holds
