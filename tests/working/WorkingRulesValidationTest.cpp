#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/working/WorkingRules.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using nlohmann::json;
using testing::decodeEdited;
using testing::setting;
using Stage = WorkingRulesDecodeError::Stage;

constexpr std::int64_t kDay = 86'400'000;

// The daily rule set's days replaced by `lengths` back to back from its start,
// as JSON pointer values for `setting`.
json days(const std::vector<std::int64_t>& lengths, std::int64_t start = testing::istanbulTime(0, 0)) {
  json list = json::array();
  for (std::size_t index = 0; index < lengths.size(); ++index) {
    list.push_back({{"id", "d" + std::to_string(index)}, {"start", start}, {"end", start + lengths[index]}});
    start += lengths[index];
  }
  return {{"/calendar/days", list}, {"/calendar/endsAt", start}, {"/goal/requiredSuccessfulDays", 1}};
}

// Two local days of Europe/Berlin starting at `firstDay`, as ICU lays them out.
json berlinDays(const char* firstDay, const char* dayBoundary) {
  const auto berlin = Calendar::inZone("Europe/Berlin").value();
  const auto start = berlin.parseDay(firstDay).value();
  const auto second = berlin.addingDays(start, 1).value();
  const auto end = berlin.addingDays(start, 2).value();
  json values = days({second.unixMillis() - start.unixMillis(), end.unixMillis() - second.unixMillis()},
                     start.unixMillis());
  values["/calendar/timezone"] = "Europe/Berlin";
  values["/calendar/dayBoundary"] = dayBoundary;
  values["/calendar/startsAt"] = start.unixMillis();
  return values;
}

struct ValidationCase {
  json values;         // JSON pointer → value, set into the rule set in `file`
  std::string reason;  // empty: the rule set is valid
  std::string file = "daily-rules.json";
};

// The rows whose values are built rather than written out; the rest are in
// rules-validation.json.
std::vector<ValidationCase> builtCases() {
  std::vector<std::int64_t> lastDayLonger(366, kDay);
  lastDayLonger.back() += 1;
  const std::int64_t scheduledStart = testing::workingRulesJson("scheduled-rules.json")["calendar"]["startsAt"];
  json thousandAndOneWindows = json::array();
  for (std::int64_t index = 0; index < 1001; ++index) {
    thousandAndOneWindows.push_back(
        {{"id", "w"}, {"start", scheduledStart + index * 60'000}, {"end", scheduledStart + (index + 1) * 60'000},
         {"targetSeconds", 60}});
  }
  return {
      {days(std::vector<std::int64_t>(366, kDay)), ""},
      {days(lastDayLonger), "Invalid Kovi range"},
      {days(std::vector<std::int64_t>(367, 3'600'000)), "Days must cover the Kovi"},
      {{{"/calendar/days/1/id", std::string(128, 'a')}}, ""},
      {berlinDays("2026-03-28", "anchored"), "Anchored days last 24 hours"},
      {berlinDays("2026-03-28", "calendar"), ""},
      {{{"/calendar/windows", thousandAndOneWindows}}, "Invalid schedule", "scheduled-rules.json"},
  };
}

TEST(WorkingRulesValidationTest, NamesTheFirstFailedCheck) {
  std::vector<ValidationCase> cases = builtCases();
  for (const json& row : json::parse(testing::workingDataFile("rules-validation.json"))) {
    cases.push_back({row.at("set"), row.at("reason"), row.at("file")});
  }
  ASSERT_EQ(cases.size(), 68U);
  for (const ValidationCase& check : cases) {
    SCOPED_TRACE(check.file + " with " + check.values.dump().substr(0, 200));
    const auto decoded = decodeEdited(check.file, setting(check.values));
    if (check.reason.empty()) {
      EXPECT_TRUE(decoded.has_value()) << decoded.error().reason;
    } else {
      ASSERT_FALSE(decoded.has_value());
      EXPECT_EQ(decoded.error().stage, Stage::validation);
      EXPECT_EQ(decoded.error().reason, check.reason);
    }
  }
}

}  // namespace
}  // namespace kovi
