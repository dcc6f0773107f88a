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

std::vector<ValidationCase> validationCases() {
  const std::int64_t start = testing::istanbulTime(0, 0);
  const std::string scheduled = "scheduled-rules.json";
  const std::string race = "race-rules.json";
  const auto hugeShare = 9'223'372'036'854'775'807LL;
  std::vector<std::int64_t> lastDayLonger(366, kDay);
  lastDayLonger.back() += 1;
  const json calendar = testing::workingRulesJson(scheduled)["calendar"];
  const std::int64_t scheduledStart = calendar["startsAt"];
  const std::int64_t firstWindowEnd = calendar["windows"][0]["end"];
  json thousandAndOneWindows = json::array();
  for (std::int64_t index = 0; index < 1001; ++index) {
    thousandAndOneWindows.push_back(
        {{"id", "w"}, {"start", scheduledStart + index * 60'000}, {"end", scheduledStart + (index + 1) * 60'000},
         {"targetSeconds", 60}});
  }
  json hundredAndOneRanks(std::vector<std::int64_t>(100, 100));
  hundredAndOneRanks.push_back(0);
  return {
      {{{"/version", 1}, {"/blocking/iphoneEnforcement", nullptr}}, ""},
      {{{"/version", 3}}, "Unsupported Working version"},
      {{{"/version", 1}}, "iPhone enforcement role requires version 2"},
      {{{"/calendar/timezone", "Mars/Olympus_Mons"}}, "Invalid timezone"},
      // Kovi range and days.
      {{{"/calendar/startsAt", -1}}, "Invalid Kovi range"},
      {{{"/calendar/endsAt", start}}, "Invalid Kovi range"},
      {days(std::vector<std::int64_t>(366, kDay)), ""},
      {days(lastDayLonger), "Invalid Kovi range"},
      {days(std::vector<std::int64_t>(367, 3'600'000)), "Days must cover the Kovi"},
      {{{"/calendar/days", json::array()}}, "Days must cover the Kovi"},
      {{{"/calendar/days/0/start", start + 1}}, "Days must cover the Kovi"},
      {{{"/calendar/days/2/start", testing::istanbulTime(2, 1)}}, "Invalid day windows"},
      {{{"/calendar/days/1/id", "day 2"}}, "Invalid day windows"},
      {{{"/calendar/days/1/id", std::string(128, 'a')}}, ""},
      {berlinDays("2026-03-28", "anchored"), "Anchored days last 24 hours"},
      {berlinDays("2026-03-28", "calendar"), ""},
      // Scheduled windows.
      {{{"/calendar/windows", thousandAndOneWindows}}, "Invalid schedule", scheduled},
      {{{"/calendar/windows/0/start", scheduledStart - 1}}, "Invalid schedule window", scheduled},
      {{{"/calendar/windows/1/start", firstWindowEnd - 1}}, "Invalid schedule window", scheduled},
      {{{"/calendar/windows/0/targetSeconds", 3 * 3600 + 1}}, "Invalid schedule window", scheduled},
      {{{"/calendar/windows/0/targetSeconds", 3 * 3600}}, "", scheduled},
      // Goal.
      {{{"/goal/dailyTargetSeconds", nullptr}}, "Invalid daily goal"},
      {{{"/goal/dailyTargetSeconds", 31'622'401}}, "Invalid daily goal"},
      {{{"/goal/requiredSuccessfulDays", 8}}, "Invalid successful days"},
      {{{"/goal/requiredSuccessfulDays", 7}}, ""},
      {{{"/goal/totalTargetSeconds", 3600}}, "Invalid total goal"},
      {{{"/goal/kind", "dailyAndTotal"}}, "Invalid total goal"},
      {{{"/calendar/windows", json::array()}}, "Schedule required", scheduled},
      {{{"/goal/kind", "sprint"}, {"/goal/totalTargetSeconds", 3600}}, "Sprint has one window", scheduled},
      {{{"/goal/kind", "singleSession"}}, "Session cannot fragment", race},
      // Race.
      {{{"/race/kind", "consistency"}}, "Daily target required", race},
      {{{"/race/kind", "firstToTarget"}}, "Invalid race target", race},
      {{{"/race/targetSeconds", 3600}}, "Invalid race target", race},
      {{{"/race/minimumEligibilitySeconds", -1}}, "Invalid race eligibility", race},
      {{{"/race/tieBucketSeconds", 0}}, "Invalid tie bucket", race},
      {{{"/calendar/lateGraceSeconds", 86'400}}, "", race},
      {{{"/calendar/lateGraceSeconds", 86'401}}, "Invalid start grace", race},
      // Race and payout: without a race, any rank payout, share or eligibility fails the payout check.
      {{{"/economics/rankPayoutsBps", {5000, 5000}}}, "", race},
      {{{"/economics/rankPayoutsBps", {5000, 4999}}}, "Rank payouts must total 10000", race},
      {{{"/economics/rankPayoutsBps", {10001, -1}}}, "Rank payouts must total 10000", race},
      {{{"/economics/rankPayoutsBps", {hugeShare, hugeShare}}}, "Rank payouts must total 10000", race},
      {{{"/economics/rankPayoutsBps", hundredAndOneRanks}}, "Rank payouts must total 10000", race},
      {{{"/economics/payout", "equalSuccessful"}}, "Rank payouts must total 10000", race},
      {{{"/economics/payout", "ranked"}, {"/economics/rankPayoutsBps", {10000}}}, "Rank payouts must total 10000"},
      {{{"/economics/rankPayoutsBps", {10000}}}, "Rank payouts must total 10000"},
      {{{"/race/minimumEligibilitySeconds", 60}}, "Rank payouts must total 10000"},
      {{{"/economics/exitPenaltyBps", 10001}}, "Invalid exit penalty"},
      // Contribution.
      {{{"/economics/contributionAtomic", "00"}}, "Invalid contribution"},
      {{{"/economics/contributionAtomic", "1.5"}}, "Invalid contribution"},
      {{{"/economics/contributionAtomic", "1" + std::string(30, '0')}}, "Invalid contribution"},
      {{{"/economics/contributionAtomic", std::string(30, '9')}}, ""},
      {{{"/economics/contributionAtomic", "0"}}, "", scheduled},
      {{{"/economics/contributionAtomic", "1"}}, "Free Kovi has no contribution", scheduled},
      // Verification and sessions.
      {{{"/verification/macRequired", false}}, "Funded work requires Mac verification"},
      {{{"/verification/strictness", "timerOnly"}}, "", scheduled},
      {{{"/verification/heartbeatSeconds", 4}}, "Invalid verification timing"},
      {{{"/verification/idleThresholdSeconds", 0}}, "Invalid verification timing"},
      {{{"/verification/strictness", "strict"}, {"/verification/permissionLoss", "unverified"}},
       "Strict permission loss must pause"},
      {{{"/session/minimumSeconds", 31'622'401}}, "Invalid session timing"},
      {{{"/session/maximumSessionsPerDay", 1001}}, "Invalid session timing"},
      {{{"/breaks/maximumPerSessionSeconds", 0}}, "Invalid break limits"},
      {{{"/breaks/maximumPerBreakSeconds", 7200}}, ""},
      {{{"/session/pomodoro/workSeconds", 0}}, "Invalid pomodoro", scheduled},
      // Blocking.
      {{{"/blocking/iphone/apps/required", true}}, "Required blocker cannot be off"},
      {{{"/blocking/bypass/usesPerSession", 101}}, "Invalid bypass allowance"},
      {{{"/blocking/bypass/usesPerSession", 0}}, "Limited bypass needs an allowance"},
      {{{"/blocking/bypass/consequence", "failDay"}}, "Violation threshold required"},
      {{{"/blocking/bypass/consequence", "failDay"}, {"/blocking/bypass/violationsToFailDay", 3}}, ""},
  };
}

TEST(WorkingRulesValidationTest, NamesTheFirstFailedCheck) {
  for (const ValidationCase& check : validationCases()) {
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
