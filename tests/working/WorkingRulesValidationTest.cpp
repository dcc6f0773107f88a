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
using testing::RulesEdit;
using Stage = WorkingRulesDecodeError::Stage;

constexpr std::int64_t kDay = 86'400'000;

// Replaces the kovi's days with `lengths` back to back from the current start.
void setDays(json& rules, const std::vector<std::int64_t>& lengths) {
  auto& calendar = rules["calendar"];
  std::int64_t start = calendar["startsAt"];
  calendar["days"] = json::array();
  for (std::size_t index = 0; index < lengths.size(); ++index) {
    calendar["days"].push_back({{"id", "d" + std::to_string(index)}, {"start", start}, {"end", start + lengths[index]}});
    start += lengths[index];
  }
  calendar["endsAt"] = start;
  rules["goal"]["requiredSuccessfulDays"] = 1;
}

// Two local days of Europe/Berlin starting at `firstDay`, as ICU lays them out.
RulesEdit berlinDays(const char* firstDay, const char* dayBoundary) {
  return [=](json& rules) {
    const auto berlin = Calendar::inZone("Europe/Berlin").value();
    const auto start = berlin.parseDay(firstDay).value();
    const auto second = berlin.addingDays(start, 1).value();
    const auto end = berlin.addingDays(start, 2).value();
    rules["calendar"]["timezone"] = "Europe/Berlin";
    rules["calendar"]["dayBoundary"] = dayBoundary;
    rules["calendar"]["startsAt"] = start.unixMillis();
    setDays(rules, {second.unixMillis() - start.unixMillis(), end.unixMillis() - second.unixMillis()});
  };
}

RulesEdit setAt(const char* pointer, json value) {
  return [=](json& rules) { rules[json::json_pointer(pointer)] = value; };
}

RulesEdit both(RulesEdit first, RulesEdit second) {
  return [=](json& rules) {
    first(rules);
    second(rules);
  };
}

json window(std::int64_t start, std::int64_t end, std::int64_t targetSeconds) {
  return {{"id", "w"}, {"start", start}, {"end", end}, {"targetSeconds", targetSeconds}};
}

struct ValidationCase {
  std::string name;
  std::string file;
  RulesEdit edit;
  std::string reason;  // empty: the rule set is valid
};

std::vector<ValidationCase> validationCases() {
  const std::int64_t start = testing::istanbulTime(0, 0);
  return {
      // Version.
      {"version 1", "daily-rules.json",
       both(setAt("/version", 1), setAt("/blocking/iphoneEnforcement", nullptr)), ""},
      {"version 3", "daily-rules.json", setAt("/version", 3), "Unsupported Working version"},
      {"iPhone role in version 1", "daily-rules.json", setAt("/version", 1),
       "iPhone enforcement role requires version 2"},
      // Time zone.
      {"empty time zone", "daily-rules.json", setAt("/calendar/timezone", ""), "Invalid timezone"},
      {"zone ICU does not know", "daily-rules.json", setAt("/calendar/timezone", "Mars/Olympus_Mons"),
       "Invalid timezone"},
      // Kovi range.
      {"366-day kovi", "daily-rules.json", [](json& rules) { setDays(rules, std::vector<std::int64_t>(366, kDay)); },
       ""},
      {"366 days and one millisecond", "daily-rules.json",
       [](json& rules) {
         std::vector<std::int64_t> lengths(366, kDay);
         lengths.back() += 1;
         setDays(rules, lengths);
       },
       "Invalid Kovi range"},
      {"negative start", "daily-rules.json", setAt("/calendar/startsAt", -1), "Invalid Kovi range"},
      {"ends when it starts", "daily-rules.json", setAt("/calendar/endsAt", start), "Invalid Kovi range"},
      // Days.
      {"no days", "daily-rules.json", setAt("/calendar/days", json::array()), "Days must cover the Kovi"},
      {"367 one-hour days", "daily-rules.json",
       [](json& rules) { setDays(rules, std::vector<std::int64_t>(367, 3'600'000)); }, "Days must cover the Kovi"},
      {"first day starts late", "daily-rules.json", setAt("/calendar/days/0/start", start + 1),
       "Days must cover the Kovi"},
      {"gap between days", "daily-rules.json", setAt("/calendar/days/2/start", testing::istanbulTime(2, 1)),
       "Invalid day windows"},
      {"day id with a space", "daily-rules.json", setAt("/calendar/days/1/id", "day 2"), "Invalid day windows"},
      {"128-character day id", "daily-rules.json", setAt("/calendar/days/1/id", std::string(128, 'a')), ""},
      {"anchored 23-hour day", "daily-rules.json", berlinDays("2026-03-28", "anchored"),
       "Anchored days last 24 hours"},
      {"anchored 25-hour day", "daily-rules.json", berlinDays("2026-10-24", "anchored"),
       "Anchored days last 24 hours"},
      {"calendar 23-hour day", "daily-rules.json", berlinDays("2026-03-28", "calendar"), ""},
      // Scheduled windows.
      {"1001 windows", "scheduled-rules.json",
       [](json& rules) {
         const std::int64_t first = rules["calendar"]["startsAt"];
         json windows = json::array();
         for (int index = 0; index < 1001; ++index) windows.push_back(window(first + index * 60'000, first + index * 60'000 + 60'000, 60));
         rules["calendar"]["windows"] = windows;
       },
       "Invalid schedule"},
      {"window before the kovi", "scheduled-rules.json",
       [](json& rules) { rules["calendar"]["windows"][0]["start"] = rules["calendar"]["startsAt"].get<std::int64_t>() - 1; },
       "Invalid schedule window"},
      {"window target longer than the window", "scheduled-rules.json",
       setAt("/calendar/windows/0/targetSeconds", 3 * 3600 + 1), "Invalid schedule window"},
      {"window target as long as the window", "scheduled-rules.json",
       setAt("/calendar/windows/0/targetSeconds", 3 * 3600), ""},
      {"overlapping windows", "scheduled-rules.json",
       [](json& rules) { rules["calendar"]["windows"][1]["start"] = rules["calendar"]["windows"][0]["end"].get<std::int64_t>() - 1; },
       "Invalid schedule window"},
      // Goal.
      {"daily goal without a target", "daily-rules.json", setAt("/goal/dailyTargetSeconds", nullptr),
       "Invalid daily goal"},
      {"daily target over the ceiling", "daily-rules.json", setAt("/goal/dailyTargetSeconds", 31'622'401),
       "Invalid daily goal"},
      {"more successful days than days", "daily-rules.json", setAt("/goal/requiredSuccessfulDays", 8),
       "Invalid successful days"},
      {"all days required", "daily-rules.json", setAt("/goal/requiredSuccessfulDays", 7), ""},
      {"total target on a daily goal", "daily-rules.json", setAt("/goal/totalTargetSeconds", 3600),
       "Invalid total goal"},
      {"daily and total without a total", "daily-rules.json", setAt("/goal/kind", "dailyAndTotal"),
       "Invalid total goal"},
      {"scheduled goal without windows", "scheduled-rules.json", setAt("/calendar/windows", json::array()),
       "Schedule required"},
      {"sprint with three windows", "scheduled-rules.json",
       both(setAt("/goal/kind", "sprint"), setAt("/goal/totalTargetSeconds", 3600)), "Sprint has one window"},
      {"single-session goal that may fragment", "race-rules.json", setAt("/goal/kind", "singleSession"),
       "Session cannot fragment"},
      // Race.
      {"consistency race on a total goal", "race-rules.json", setAt("/race/kind", "consistency"),
       "Daily target required"},
      {"first-to-target race without a target", "race-rules.json", setAt("/race/kind", "firstToTarget"),
       "Invalid race target"},
      {"highest-total race with a target", "race-rules.json", setAt("/race/targetSeconds", 3600),
       "Invalid race target"},
      {"negative eligibility", "race-rules.json", setAt("/race/minimumEligibilitySeconds", -1),
       "Invalid race eligibility"},
      {"tie bucket zero", "race-rules.json", setAt("/race/tieBucketSeconds", 0), "Invalid tie bucket"},
      {"start grace of a day", "race-rules.json", setAt("/calendar/lateGraceSeconds", 86'400), ""},
      {"start grace over a day", "race-rules.json", setAt("/calendar/lateGraceSeconds", 86'401),
       "Invalid start grace"},
      // Race and payout.
      {"rank payouts 5000 and 5000", "race-rules.json", setAt("/economics/rankPayoutsBps", json{5000, 5000}), ""},
      {"rank payouts 5000 and 4999", "race-rules.json", setAt("/economics/rankPayoutsBps", json{5000, 4999}),
       "Rank payouts must total 10000"},
      {"single rank payout of 0", "race-rules.json", setAt("/economics/rankPayoutsBps", json{0}),
       "Rank payouts must total 10000"},
      {"rank shares out of range that total 10000", "race-rules.json",
       setAt("/economics/rankPayoutsBps", json{10001, -1}), "Rank payouts must total 10000"},
      {"huge rank shares", "race-rules.json",
       setAt("/economics/rankPayoutsBps", json{9'223'372'036'854'775'807LL, 9'223'372'036'854'775'807LL}),
       "Rank payouts must total 10000"},
      {"101 ranks", "race-rules.json",
       [](json& rules) {
         json shares(std::vector<std::int64_t>(100, 100));
         shares.push_back(0);
         rules["economics"]["rankPayoutsBps"] = shares;
       },
       "Rank payouts must total 10000"},
      {"race paying equally", "race-rules.json", setAt("/economics/payout", "equalSuccessful"),
       "Rank payouts must total 10000"},
      {"no race with ranked payout", "daily-rules.json",
       both(setAt("/economics/payout", "ranked"), setAt("/economics/rankPayoutsBps", json{10000})),
       "Rank payouts must total 10000"},
      {"no race with rank shares", "daily-rules.json", setAt("/economics/rankPayoutsBps", json{10000}),
       "Rank payouts must total 10000"},
      {"no race with an eligibility minimum", "daily-rules.json", setAt("/race/minimumEligibilitySeconds", 60),
       "Rank payouts must total 10000"},
      {"exit penalty over the pool", "daily-rules.json", setAt("/economics/exitPenaltyBps", 10001),
       "Invalid exit penalty"},
      // Contribution.
      {"contribution 00", "daily-rules.json", setAt("/economics/contributionAtomic", "00"), "Invalid contribution"},
      {"contribution -1", "daily-rules.json", setAt("/economics/contributionAtomic", "-1"), "Invalid contribution"},
      {"contribution 1.5", "daily-rules.json", setAt("/economics/contributionAtomic", "1.5"), "Invalid contribution"},
      {"contribution of 31 digits", "daily-rules.json",
       setAt("/economics/contributionAtomic", "1" + std::string(30, '0')), "Invalid contribution"},
      {"contribution of 30 digits", "daily-rules.json", setAt("/economics/contributionAtomic", std::string(30, '9')),
       ""},
      {"free kovi with 0", "scheduled-rules.json", setAt("/economics/contributionAtomic", "0"), ""},
      {"free kovi with 1", "scheduled-rules.json", setAt("/economics/contributionAtomic", "1"),
       "Free Kovi has no contribution"},
      // Funded verification.
      {"funded without a Mac", "daily-rules.json", setAt("/verification/macRequired", false),
       "Funded work requires Mac verification"},
      {"free kovi on a timer", "scheduled-rules.json", setAt("/verification/strictness", "timerOnly"), ""},
      // Verification timing.
      {"heartbeat 4 seconds", "daily-rules.json", setAt("/verification/heartbeatSeconds", 4),
       "Invalid verification timing"},
      {"idle threshold zero", "daily-rules.json", setAt("/verification/idleThresholdSeconds", 0),
       "Invalid verification timing"},
      {"strict and unverified after a permission loss", "daily-rules.json",
       both(setAt("/verification/strictness", "strict"), setAt("/verification/permissionLoss", "unverified")),
       "Strict permission loss must pause"},
      // Session timing.
      {"minimum over the ceiling", "daily-rules.json", setAt("/session/minimumSeconds", 31'622'401),
       "Invalid session timing"},
      {"1001 sessions a day", "daily-rules.json", setAt("/session/maximumSessionsPerDay", 1001),
       "Invalid session timing"},
      // Breaks.
      {"break limit zero", "daily-rules.json", setAt("/breaks/maximumPerSessionSeconds", 0), "Invalid break limits"},
      {"break limits in any order", "daily-rules.json", setAt("/breaks/maximumPerBreakSeconds", 7200), ""},
      // Pomodoro.
      {"pomodoro without work", "scheduled-rules.json", setAt("/session/pomodoro/workSeconds", 0),
       "Invalid pomodoro"},
      // Blocking.
      {"required blocker off", "daily-rules.json", setAt("/blocking/iphone/apps/required", true),
       "Required blocker cannot be off"},
      {"101 bypass uses", "daily-rules.json", setAt("/blocking/bypass/usesPerSession", 101),
       "Invalid bypass allowance"},
      {"limited bypass without uses", "daily-rules.json", setAt("/blocking/bypass/usesPerSession", 0),
       "Limited bypass needs an allowance"},
      {"fail day without a threshold", "daily-rules.json", setAt("/blocking/bypass/consequence", "failDay"),
       "Violation threshold required"},
      {"fail day after three violations", "daily-rules.json",
       both(setAt("/blocking/bypass/consequence", "failDay"), setAt("/blocking/bypass/violationsToFailDay", 3)), ""},
  };
}

TEST(WorkingRulesValidationTest, NamesTheFirstFailedCheck) {
  for (const ValidationCase& check : validationCases()) {
    SCOPED_TRACE(check.name);
    const auto decoded = decodeEdited(check.file, check.edit);
    if (check.reason.empty()) {
      EXPECT_TRUE(decoded.has_value()) << decoded.error().reason;
    } else {
      ASSERT_FALSE(decoded.has_value());
      EXPECT_EQ(decoded.error().stage, Stage::validation);
      EXPECT_EQ(decoded.error().reason, check.reason);
    }
  }
}

// Wrong types and unknown enumeration values fail typed decoding, after the
// shape check and before validation, with the key path.
TEST(WorkingRulesValidationTest, TypedDecodingNamesThePath) {
  const struct {
    RulesEdit edit;
    std::string reason;
  } cases[] = {
      {setAt("/goal/kind", "weekly"), "rules.goal.kind: unknown value \"weekly\""},
      {setAt("/version", "2"), "rules.version: expected an integer, found a string"},
      {setAt("/economics/contributionAtomic", 25), "rules.economics.contributionAtomic: expected a string, found a number"},
      {setAt("/calendar/days/2/start", 1.5), "rules.calendar.days[2].start: expected an integer, found a number"},
      {setAt("/session/pomodoro", 7), "rules.session.pomodoro: expected an object, found a number"},
      {setAt("/privacy/taskLabel", "secret"), "rules.privacy.taskLabel: unknown value \"secret\""},
  };
  for (const auto& typed : cases) {
    SCOPED_TRACE(typed.reason);
    const auto decoded = decodeEdited("daily-rules.json", typed.edit);
    ASSERT_FALSE(decoded.has_value());
    EXPECT_EQ(decoded.error().stage, Stage::decoding);
    EXPECT_EQ(decoded.error().reason, typed.reason);
  }
}

TEST(WorkingRulesValidationTest, BrokenJsonIsASyntaxError) {
  const auto decoded = decodeWorkingRules(std::string_view("{\"version\": 2,"));
  ASSERT_FALSE(decoded.has_value());
  EXPECT_EQ(decoded.error().stage, Stage::syntax);
}

}  // namespace
}  // namespace kovi
