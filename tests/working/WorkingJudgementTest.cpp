#include "KoviKit/working/WorkingJudgement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "KoviKit/working/WorkingJudgementCoding.h"
#include "KoviKit/working/WorkingPoolApportionment.h"
#include "KoviKit/working/WorkingRuleSummary.h"
#include "KoviKit/working/WorkingSummaryTexts.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Rules = WorkingRules;
using Segment = WorkingWorkSegment;
using testing::istanbulTime;
namespace text = workingsummary;

constexpr std::int64_t kHour = 3'600'000;

// `minutes` of work from `hour`:`minute` on kovi day `day` (Istanbul rule sets).
Segment work(int day, int hour, int minute, std::int64_t minutes) {
  const std::int64_t start = istanbulTime(day, hour, minute);
  return {start, start + minutes * 60'000};
}

// A member with one session per segment list.
WorkingMemberWork member(std::string id, std::vector<std::vector<Segment>> sessions, std::int64_t violations = 0) {
  WorkingMemberWork worker;
  worker.accountID = std::move(id);
  worker.violations = violations;
  for (auto& segments : sessions) {
    worker.sessions.push_back({"s" + std::to_string(worker.sessions.size() + 1), std::move(segments)});
  }
  return worker;
}

// One session of `hours` hours from 09:00 on each of `days`.
WorkingMemberWork dailyWorker(std::string id, const std::vector<int>& days, std::int64_t minutes) {
  std::vector<std::vector<Segment>> sessions;
  for (const int day : days) sessions.push_back({work(day, 9, 0, minutes)});
  return member(std::move(id), std::move(sessions));
}

// The summary lines a judgement test relies on must be in the rule set's
// consent summary: the judgement does what the participants read.
bool summaryHas(const Rules& rules, std::initializer_list<const WorkingSummaryText*> wanted) {
  const auto lines = summarizeWorkingRules(rules);
  return std::ranges::all_of(wanted, [&](const WorkingSummaryText* text) {
    return std::ranges::any_of(lines, [&](const WorkingSummaryLine& line) { return line.text == text; });
  });
}

WorkingJudgement judged(const Rules& rules, const std::vector<WorkingMemberWork>& members) {
  auto judgement = judgeWorkingRules(rules, members);
  EXPECT_TRUE(judgement.has_value()) << (judgement ? "" : judgement.error());
  if (!judgement) return {};
  std::int64_t total = judgement->settlement.carriedBps;
  for (const auto& result : judgement->members) total += result.payoutBps;
  EXPECT_EQ(total, 10000) << "shares and carried points must make the whole pool";
  return std::move(*judgement);
}

std::map<std::string, std::int64_t> payouts(const WorkingJudgement& judgement) {
  std::map<std::string, std::int64_t> byMember;
  for (const auto& result : judgement.members) byMember[result.accountID] = result.payoutBps;
  return byMember;
}

std::map<std::string, std::optional<std::int64_t>> ranks(const WorkingJudgement& judgement) {
  std::map<std::string, std::optional<std::int64_t>> byMember;
  for (const auto& result : judgement.members) byMember[result.accountID] = result.rank;
  return byMember;
}

TEST(WorkingJudgementTest, DaysAreCappedAndOnlyTheBestRequiredDaysCount) {
  const Rules rules = testing::workingRules("daily-rules.json");  // 2 h 30 min on 5 of 7 days
  ASSERT_TRUE(summaryHas(rules, {&text::capNoCarry, &text::measureBestDays, &text::requiredSomeDays,
                                 &text::countingSpan}));

  auto steady = member("steady", {{work(0, 9, 0, 300)}, {work(1, 9, 0, 150)}, {work(2, 9, 0, 150)},
                                  {work(3, 9, 0, 150)}, {work(4, 9, 0, 150)}, {work(5, 9, 0, 60)}});
  auto surge = member("surge", {{work(0, 8, 0, 600)}, {work(1, 9, 0, 120)}});
  const auto judgement = judged(rules, {steady, surge, member("night", {{work(0, 23, 0, 150)}})});

  const auto& first = judgement.members[0].progress;
  EXPECT_EQ(first.countedMilliseconds, 16 * kHour);
  EXPECT_EQ(first.progressMilliseconds, 5 * 150 * 60'000);  // day 0's five hours count as 2 h 30 min
  EXPECT_EQ(first.targetMilliseconds, 5 * 150 * 60'000);
  EXPECT_EQ(first.successfulDays, 5);
  EXPECT_EQ(first.bestStreak, 5);
  EXPECT_TRUE(first.successful);

  // Ten hours on one day never make up for the days without work.
  const auto& second = judgement.members[1].progress;
  EXPECT_EQ(second.progressMilliseconds, 150 * 60'000 + 120 * 60'000);
  EXPECT_EQ(second.successfulDays, 1);
  EXPECT_FALSE(second.successful);

  // Time across midnight is written to each day it falls in.
  const auto& night = judgement.members[2].progress.days;
  ASSERT_EQ(night.size(), 7U);
  EXPECT_EQ(night[0].countedMilliseconds, 1 * kHour);
  EXPECT_EQ(night[1].countedMilliseconds, 90 * 60'000);
  EXPECT_FALSE(night[0].met || night[1].met);
}

// Every session rule the consent summary states changes what counts.
TEST(WorkingJudgementTest, SessionRulesDecideWhichWorkCounts) {
  ASSERT_TRUE(summaryHas(testing::workingRules("daily-rules.json"), {&text::minimumSession}));
  const struct {
    std::string name;
    const char* key;
    std::int64_t value;
    WorkingMemberWork worker;
    std::int64_t counted;
  } cases[] = {
      // Segments of one session add up: 5 + 4 minutes is under the minimum, 6 + 4 is not.
      {"minimum session", "minimumSeconds", 600,
       member("m", {{work(0, 9, 0, 5), work(0, 9, 10, 4)}, {work(0, 10, 0, 6), work(0, 10, 10, 4)}}), 10 * 60'000},
      // 30 min rest: the session starting 15 min after the first does not
      // count; the one starting 45 min after the first's end does.
      {"rest between sessions", "restSeconds", 1800,
       member("m", {{work(0, 9, 0, 30)}, {work(0, 9, 45, 30)}, {work(0, 11, 0, 20)}}), 50 * 60'000},
      {"sessions per day", "maximumSessionsPerDay", 1,
       member("m", {{work(0, 9, 0, 30)}, {work(0, 12, 0, 30)}, {work(1, 9, 0, 20)}}), 50 * 60'000},
      // One hour from the session's start: 30 min, then 10 of the 30 min from 09:50.
      {"hard window", "hardWindowSeconds", 3600,
       member("m", {{work(0, 9, 0, 30), work(0, 9, 50, 30), work(0, 10, 30, 30)}}), 40 * 60'000},
      {"daily cap", "dailyCapSeconds", 3600,
       member("m", {{work(0, 9, 0, 45)}, {work(0, 11, 0, 45)}, {work(1, 9, 0, 45)}}), 105 * 60'000},
  };
  for (const auto& example : cases) {
    SCOPED_TRACE(example.name);
    const Rules rules = testing::workingRules("daily-rules.json", {{std::string("/session/") + example.key, example.value}});
    EXPECT_EQ(judged(rules, {example.worker}).members[0].progress.countedMilliseconds, example.counted);
  }
}

// Even without an eligibility minimum, a member who did no counted work is
// not a racer: when nobody worked, the fallback decides.
TEST(WorkingJudgementTest, MembersWithoutWorkAreNotRacers) {
  const Rules rules = testing::workingRules("race-rules.json", {{"/race/minimumEligibilitySeconds", 0}});
  const auto judgement = judged(rules, {member("ayse", {}), member("bora", {})});
  EXPECT_TRUE(judgement.settlement.fallbackUsed);
  EXPECT_FALSE(judgement.members[0].eligible || judgement.members[1].eligible);
}

TEST(WorkingJudgementTest, BothConditionsOfDailyAndTotal) {
  const Rules rules =
      testing::workingRules("daily-rules.json", {{"/goal/kind", "dailyAndTotal"}, {"/goal/totalTargetSeconds", 20 * 3600}});
  ASSERT_TRUE(summaryHas(rules, {&text::bothConditions}));
  const auto judgement =
      judged(rules, {dailyWorker("days-only", {0, 1, 2, 3, 4}, 150), dailyWorker("both", {0, 1, 2, 3, 4, 5}, 210)});
  const auto& daysOnly = judgement.members[0].progress;
  EXPECT_FALSE(daysOnly.successful);
  EXPECT_EQ(daysOnly.progressMilliseconds, 2 * 5 * 150 * 60'000);  // 12 h 30 min of days + 12 h 30 min of total
  EXPECT_EQ(daysOnly.targetMilliseconds, 5 * 150 * 60'000 + 20 * kHour);
  EXPECT_TRUE(judgement.members[1].progress.successful);  // 21 hours over six days
  EXPECT_EQ(payouts(judgement).at("both"), 10000);
}

// First to five hours: ayse at 14:00, bora at 14:04, cem at 14:05, deniz never.
std::vector<WorkingMemberWork> firstToTarget() {
  return {member("ayse", {{work(0, 9, 0, 300)}}), member("bora", {{work(0, 8, 4, 120), work(0, 11, 4, 180)}}),
          member("cem", {{work(0, 9, 5, 300)}}), member("deniz", {{work(0, 9, 0, 299)}})};
}

WorkingMemberWork addressed(WorkingMemberWork worker, std::string address) {
  worker.address = std::move(address);
  return worker;
}

// Who is paid what, and ranked where, under each payout, race and fallback.
TEST(WorkingJudgementTest, SettlesPayoutsRanksAndFallbacks) {
  using Ranks = std::map<std::string, std::optional<std::int64_t>>;
  using Payouts = std::map<std::string, std::int64_t>;
  const Rules daily = testing::workingRules("daily-rules.json");  // 2 h 30 min on 5 of 7 days, equal shares, refund
  const Rules race = testing::workingRules("race-rules.json");    // most work wins, 60/30/10 %, 2 h to enter
  const auto efficiency = [](const char* tieBreak) {
    return testing::workingRules("first-to-target-rules.json", {{"/race/kind", "efficiency"},
                                                                {"/race/efficiencyTieBreak", tieBreak},
                                                                {"/economics/rankPayoutsBps", {7000, 3000}}});
  };
  const auto rankedDaily = [](const char* kind) {
    return testing::workingRules("daily-rules.json", {{"/race/kind", kind}, {"/economics/payout", "ranked"},
                                                      {"/economics/rankPayoutsBps", {7000, 3000}}});
  };
  const std::vector<WorkingMemberWork> byEfficiency{member("ayse", {{work(0, 8, 0, 300)}}, 1),
                                                    member("bora", {{work(1, 9, 0, 300)}}, 0),
                                                    member("cem", {{work(0, 9, 0, 300)}}, 0)};
  // Four successful days in two runs of two, against three in a row.
  const std::vector<WorkingMemberWork> runs{dailyWorker("ayse", {0, 1, 4, 5}, 150), dailyWorker("bora", {1, 2, 3}, 150)};
  struct Case {
    std::string name;
    Rules rules;
    std::vector<const WorkingSummaryText*> lines;  // the consent summary promises what decides
    std::vector<WorkingMemberWork> members;
    Payouts payouts;
    Ranks ranks = {};  // empty: not ranked
    std::optional<WorkingSettlement> settlement = {};
  };
  const std::vector<Case> cases{
      // 10000 / 3 leaves one point, which goes to the first account ID; extra work earns nothing more.
      {"successful members share equally", daily, {&text::equalShares, &text::successByTarget},
       {dailyWorker("bora", {0, 1, 2, 3, 4}, 150), dailyWorker("ayse", {0, 1, 2, 3, 4, 5, 6}, 480),
        dailyWorker("cem", {2, 3, 4, 5, 6}, 200), dailyWorker("deniz", {0, 1, 2, 3}, 600)},
       {{"ayse", 3334}, {"bora", 3333}, {"cem", 3333}, {"deniz", 0}}, {}, WorkingSettlement{}},
      {"refund to everyone evaluated", daily, {&text::fallbackRefund},
       {dailyWorker("ayse", {0}, 150), dailyWorker("bora", {}, 0), dailyWorker("cem", {0, 1, 2}, 600)},
       {{"ayse", 3334}, {"bora", 3333}, {"cem", 3333}}, {}, WorkingSettlement{WorkingSettlement::Kind::refund, true, 0}},
      {"closest to the target shares", race, {&text::fallbackClosest},
       {dailyWorker("ayse", {0}, 60), dailyWorker("bora", {0}, 90), dailyWorker("cem", {1}, 90)},
       {{"ayse", 0}, {"bora", 5000}, {"cem", 5000}}, {}, WorkingSettlement{WorkingSettlement::Kind::payout, true, 0}},
      {"rollover carries the pool", testing::workingRules("scheduled-rules.json"), {&text::fallbackRollover},
       {member("ayse", {}), member("bora", {})}, {{"ayse", 0}, {"bora", 0}},
       {}, WorkingSettlement{WorkingSettlement::Kind::rollover, true, 10000}},
      {"tied first place shares the first two ranks", race, {&text::rankTiesShare},
       {dailyWorker("ayse", {0}, 300), dailyWorker("bora", {0}, 300), dailyWorker("cem", {0}, 180),
        dailyWorker("deniz", {0}, 60)},
       {{"ayse", 4500}, {"bora", 4500}, {"cem", 1000}, {"deniz", 0}},
       {{"ayse", 1}, {"bora", 1}, {"cem", 3}, {"deniz", std::nullopt}}},
      {"fewer eligible than ranks", race, {&text::rankUndistributed},
       {dailyWorker("ayse", {0}, 300), dailyWorker("bora", {0}, 180), dailyWorker("cem", {0}, 60)},
       {{"ayse", 6000}, {"bora", 4000}, {"cem", 0}}, {{"ayse", 1}, {"bora", 2}, {"cem", std::nullopt}}},
      {"a tie for the last eligible rank takes the rest", race, {&text::rankUndistributed},
       {dailyWorker("ayse", {0}, 240), dailyWorker("bora", {3}, 240)}, {{"ayse", 5000}, {"bora", 5000}},
       {{"ayse", 1}, {"bora", 1}}},
      {"under the eligibility minimum is not ranked", race, {&text::raceEligibility},
       {dailyWorker("ayse", {0}, 119), dailyWorker("bora", {0}, 120)}, {{"ayse", 0}, {"bora", 10000}},
       {{"ayse", std::nullopt}, {"bora", 1}}},
      {"rounding by address orders the leftover point",
       testing::workingRules("race-rules.json", {{"/economics/rounding", "largestRemainderAddress"}}), {},
       {addressed(dailyWorker("ayse", {0}, 180), "0xCC"), addressed(dailyWorker("bora", {1}, 180), "0xbb"),
        addressed(dailyWorker("cem", {2}, 180), "0xAA")},
       {{"ayse", 3333}, {"bora", 3333}, {"cem", 3334}}},
      // Fewest violations first, then the earlier reach, or a shared rank.
      {"efficiency, earliest target", efficiency("earliestTarget"), {&text::raceEfficiency, &text::raceEarliestTarget},
       byEfficiency, {{"ayse", 0}, {"bora", 3000}, {"cem", 7000}}, {{"ayse", 3}, {"bora", 2}, {"cem", 1}}},
      {"efficiency, shared", efficiency("shared"), {&text::raceEfficiency}, byEfficiency,
       {{"ayse", 0}, {"bora", 5000}, {"cem", 5000}}, {{"ayse", 3}, {"bora", 1}, {"cem", 1}}},
      {"consistency counts days", rankedDaily("consistency"), {&text::raceConsistency}, runs,
       {{"ayse", 7000}, {"bora", 3000}}, {{"ayse", 1}, {"bora", 2}}},
      {"streak counts runs", rankedDaily("streak"), {&text::raceStreak}, runs, {{"ayse", 3000}, {"bora", 7000}},
       {{"ayse", 2}, {"bora", 1}}},
      // Reach times in one bucket share the first rank; the winner takes all, shared.
      {"first to target, by bucket", testing::workingRules("first-to-target-rules.json"),
       {&text::raceTieBucket, &text::winnerTakesAll}, firstToTarget(),
       {{"ayse", 5000}, {"bora", 5000}, {"cem", 0}, {"deniz", 0}},
       {{"ayse", 1}, {"bora", 1}, {"cem", 3}, {"deniz", std::nullopt}}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    for (const WorkingSummaryText* line : example.lines) EXPECT_TRUE(summaryHas(example.rules, {line})) << line->english;
    const auto judgement = judged(example.rules, example.members);
    EXPECT_EQ(payouts(judgement), example.payouts);
    if (!example.ranks.empty()) {
      EXPECT_EQ(ranks(judgement), example.ranks);
    }
    EXPECT_EQ(judgement.settlement, example.settlement.value_or(judgement.settlement));
  }
  EXPECT_FALSE(summaryHas(efficiency("shared"), {&text::raceEarliestTarget}));
}

// 14:00 and 14:04 fall in the same 5-minute bucket; 14:05 starts the next one.
TEST(WorkingJudgementTest, FirstToTargetRecordsWhenTheTargetWasReached) {
  const auto judgement = judged(testing::workingRules("first-to-target-rules.json"), firstToTarget());
  EXPECT_EQ(judgement.members[0].progress.reachedAt, istanbulTime(0, 14));
  EXPECT_EQ(judgement.members[1].progress.reachedAt, istanbulTime(0, 14, 4));
}

// Scheduled rule set: Friday 18:00–21:00 (1 h 30 min), Saturday and Sunday
// 09:00–12:00 (2 h each) in Europe/Berlin, single sessions, work outside the
// windows excluded.
Segment berlin(std::int64_t windowStart, int minutesIn, std::int64_t minutes) {
  const std::int64_t start = windowStart + minutesIn * 60'000;
  return {start, start + minutes * 60'000};
}

TEST(WorkingJudgementTest, SingleSessionsAreNotMergedInsideAWindow) {
  const Rules rules = testing::workingRules("scheduled-rules.json");
  ASSERT_TRUE(summaryHas(rules, {&text::singleSessionOnly, &text::measureWindowsBestSession}));
  const auto& windows = rules.calendar.windows;
  const auto judgement = judged(
      rules, {member("split", {{berlin(windows[0].start, 0, 60)}, {berlin(windows[0].start, 90, 60)}}),
              member("whole", {{berlin(windows[0].start, 0, 90)},
                               {berlin(windows[1].start, 0, 120)},
                               {berlin(windows[2].start, 30, 180)}})});
  const auto& split = judgement.members[0].progress;
  EXPECT_EQ(split.windows[0].countedMilliseconds, 1 * kHour);
  EXPECT_FALSE(split.windows[0].met);
  const auto& whole = judgement.members[1].progress;
  EXPECT_TRUE(whole.successful);
  // The last window counts only until it ends and only up to its target.
  EXPECT_EQ(whole.windows[2].countedMilliseconds, 150 * 60'000);
  EXPECT_EQ(whole.progressMilliseconds, (90 + 120 + 120) * 60'000);
  EXPECT_EQ(payouts(judgement).at("whole"), 10000);
}

TEST(WorkingJudgementTest, WorkOutsideTheWindowsIsExcludedOrKeptApart) {
  for (const char* outside : {"exclude", "separate"}) {
    SCOPED_TRACE(outside);
    const Rules rules = testing::workingRules("scheduled-rules.json", {{"/calendar/outsideWindow", outside}});
    const std::int64_t friday = rules.calendar.windows[0].start;
    const auto judgement = judged(rules, {member("early", {{berlin(friday, -240, 270)}})});
    const auto& progress = judgement.members[0].progress;
    EXPECT_EQ(progress.windows[0].countedMilliseconds, 30 * 60'000);
    EXPECT_EQ(progress.countedMilliseconds, std::string(outside) == "exclude" ? 30 * 60'000 : 270 * 60'000);
  }
}

TEST(WorkingJudgementTest, SprintNeedsItsTotalInsideTheOneWindow) {
  nlohmann::json edited = testing::workingRulesJson("scheduled-rules.json");
  edited["goal"] = {{"kind", "sprint"}, {"dailyTargetSeconds", nullptr}, {"totalTargetSeconds", 2 * 3600},
                    {"requiredSuccessfulDays", nullptr}};
  edited["calendar"]["windows"] = nlohmann::json::array({edited["calendar"]["windows"][1]});
  const Rules rules = testing::decodedRules(edited);
  ASSERT_TRUE(summaryHas(rules, {&text::sprintBoth}));
  const std::int64_t saturday = rules.calendar.windows[0].start;
  const auto judgement = judged(rules, {member("in", {{berlin(saturday, 30, 150)}}),
                                        member("short", {{berlin(saturday, 0, 110)}})});
  EXPECT_TRUE(judgement.members[0].progress.successful);
  EXPECT_EQ(judgement.members[0].progress.progressMilliseconds, 150 * 60'000);
  EXPECT_FALSE(judgement.members[1].progress.successful);
}

TEST(WorkingJudgementTest, RefusesWorkItCannotJudge) {
  const Rules race = testing::workingRules("race-rules.json");
  const struct { std::string name; Rules rules; std::vector<WorkingMemberWork> members; std::string error; } cases[] = {
      {"no members", race, {}, "members: no members to judge"},
      {"empty account", race, {dailyWorker("", {0}, 60)}, "members[0].accountID: empty"},
      {"repeated account", race, {dailyWorker("ayse", {0}, 60), dailyWorker("ayse", {1}, 60)},
       "members[1].accountID: \"ayse\" appears more than once"},
      {"segment ending at its start", race, {member("ayse", {{work(0, 9, 0, 60)}, {work(1, 9, 0, 0)}})},
       "members[0].sessions[1].segments[0]: end is not after start"},
      {"overlapping sessions", race, {member("ayse", {{work(0, 9, 0, 60)}, {work(0, 9, 30, 60)}})},
       "members[0]: two segments overlap at " + std::to_string(istanbulTime(0, 9, 30))},
      {"negative violations", race, {member("ayse", {{work(0, 9, 0, 60)}}, -1)}, "members[0].violations: negative"},
      {"rounding by address without one",
       testing::workingRules("race-rules.json", {{"/economics/rounding", "largestRemainderAddress"}}),
       {dailyWorker("ayse", {0}, 60)},
       "members[0].address: rounding by address needs every member's address"},
  };
  for (const auto& refused : cases) {
    SCOPED_TRACE(refused.name);
    const auto judgement = judgeWorkingRules(refused.rules, refused.members);
    ASSERT_FALSE(judgement.has_value());
    EXPECT_EQ(judgement.error(), refused.error);
  }
}

TEST(WorkingPoolApportionmentTest, LargestRemaindersTakeTheLeftoverPoints) {
  const struct { std::string name; std::vector<WorkingPoolClaim> claims; std::vector<std::int64_t> points; } cases[] = {
      {"thirds go to the first in order", {{10000, 3, "c"}, {10000, 3, "a"}, {10000, 3, "b"}}, {3333, 3334, 3333}},
      {"larger fraction first", {{5000, 3, "a"}, {5000, 3, "b"}, {5000, 3, "c"}, {5000, 2, "d"}, {5000, 2, "e"}},
       {1667, 1667, 1666, 2500, 2500}},
      {"nothing claimed", {{0, 1, "a"}, {0, 1, "b"}}, {0, 0}},
  };
  for (const auto& apportionment : cases) {
    SCOPED_TRACE(apportionment.name);
    const auto points = apportionWorkingPool(apportionment.claims,
                                             apportionment.name == "nothing claimed" ? 0 : 10000);
    EXPECT_EQ(points, apportionment.points);
  }
}

TEST(WorkingJudgementCodingTest, WorkFileErrorsNameTheirPath) {
  const auto cases = nlohmann::json::parse(testing::workingDataFile("work-file-errors.json"));
  ASSERT_EQ(cases.size(), 6U);
  for (const auto& broken : cases) {
    const std::string text = broken.at("text");
    SCOPED_TRACE(text);
    const auto work = decodeWorkingWork(text);
    ASSERT_FALSE(work.has_value());
    EXPECT_EQ(work.error().message(), broken.at("message").get<std::string>());
  }
}

TEST(WorkingJudgementCodingTest, WorkFileDecodesAndTheJudgementEncodesEveryMemberInOrder) {
  const auto work = decodeWorkingWork(testing::workingDataFile("race-work.json"));
  ASSERT_TRUE(work.has_value()) << work.error().message();
  ASSERT_TRUE(work->size() == 4 && (*work)[0].sessions.size() == 2);
  // Optional keys take their defaults; given ones are kept.
  EXPECT_EQ((*work)[0].violations, 0);
  EXPECT_EQ((*work)[0].address, std::nullopt);
  EXPECT_EQ((*work)[1].violations, 1);
  EXPECT_EQ((*work)[0].sessions[1].segments[0],
            (WorkingWorkSegment{testing::istanbulTime(1, 20), testing::istanbulTime(1, 22)}));
  const auto judgement = judgeWorkingRules(testing::workingRules("race-rules.json"), *work);
  ASSERT_TRUE(judgement.has_value()) << judgement.error();
  const nlohmann::ordered_json encoded = encodeWorkingJudgement(*judgement);
  EXPECT_EQ(encoded["settlement"], nlohmann::ordered_json::parse(
                                       R"({"kind": "payout", "fallbackUsed": false, "carriedBps": 0})"));
  const auto& members = encoded["members"];
  ASSERT_EQ(members.size(), 4U);
  const nlohmann::ordered_json deniz = members[3];
  EXPECT_EQ(deniz["accountID"], "deniz");
  EXPECT_EQ(deniz["countedMilliseconds"], 55 * 60'000);  // the 8-minute session is under the minimum
  EXPECT_TRUE(deniz["rank"].is_null());
  EXPECT_EQ(deniz["eligible"], false);
  EXPECT_EQ(members[0]["rank"], 1);
  EXPECT_EQ(members[1]["payoutBps"], 4500);
  std::vector<std::string> keys;
  for (const auto& [key, value] : members[0].items()) keys.push_back(key);
  const std::vector<std::string> expectedKeys{
      "accountID", "progressMilliseconds", "targetMilliseconds", "successful", "countedMilliseconds",
      "successfulDays", "bestStreak", "reachedAt", "eligible", "rank", "payoutBps", "days", "windows"};
  EXPECT_EQ(keys, expectedKeys);
}

}  // namespace
}  // namespace kovi
