#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"
#include "KoviKit/evidence/WalkingRaceRanking.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using testing::kBucket;
using testing::kHour;
using Verdict = WalkingEvidenceVerdict;
using Rules = WalkingKoviRules;

const UnixMillis kStart = at("2026-05-04T08:00:00Z");
constexpr UnixMillis kDay = 24 * kHour;

// One day's read: (cell, steps) pairs, or an outcome without buckets.
struct DayRead {
  int day; std::vector<std::pair<int, double>> cells;
  HealthEvidenceReadOutcome outcome = HealthEvidenceReadOutcome::measured;
};

// An instant `cells` buckets into day `day`.
UnixMillis inDay(int day, std::int64_t cells) { return kStart + day * kDay + cells * kBucket; }

Rules withMode(Rules::Mode mode, std::optional<Rules::GoalMode> goal, std::optional<Rules::RaceMode> race,
               std::optional<std::int64_t> target) {
  Rules rules = testing::dailyGoal(3, 0);
  rules.mode = mode;
  rules.goalMode = goal;
  rules.raceMode = race;
  rules.stepTarget = target;
  return rules;
}

const Rules kDaily = withMode(Rules::Mode::goal, Rules::GoalMode::daily, {}, 1000);
const Rules kTotal = withMode(Rules::Mode::goal, Rules::GoalMode::total, {}, 2500);
const Rules kFirst = withMode(Rules::Mode::race, {}, Rules::RaceMode::firstToTarget, 1500);
const Rules kHighest = withMode(Rules::Mode::race, {}, Rules::RaceMode::highestTotal, {});

Rules requiring(Rules rules, int days) {
  rules.requiredSuccessfulDays = days;
  return rules;
}

Rules withMinimum(Rules rules, std::int64_t minimum) {
  rules.minimumEligibility = minimum;
  return rules;
}

WalkingEvidenceEvaluation evaluate(const Rules& rules, const std::vector<DayRead>& reads, UnixMillis now) {
  const auto windows = WalkingDayWindowPlanner::plan(rules, kStart).value();
  std::vector<WalkingEvidenceBuckets::SanitizedDay> days;
  for (const DayRead& read : reads) {
    std::vector<HealthEvidenceBucket> buckets;
    for (const auto& [cell, steps] : read.cells) buckets.push_back(testing::bucketAt(inDay(read.day, 0), cell, steps));
    days.push_back(WalkingEvidenceBuckets::sanitize(windows[read.day], read.outcome, buckets, now).value());
  }
  return WalkingEvidenceEvaluation::evaluate(rules, windows, days, now);
}

const UnixMillis kAfterEnd = inDay(3, 4);                // the last day is over, verification open
const UnixMillis kAfterClose = inDay(3, 0) + 25 * kHour;  // verification window closed
const std::vector<std::pair<int, double>> k1000{{0, 400}, {1, 600}};
constexpr auto kNoData = HealthEvidenceReadOutcome::noReadableData;

TEST(WalkingEvidenceEvaluation, JudgesOnClosedTotals) {
  struct Case {
    std::string name; Rules rules; std::vector<DayRead> reads; UnixMillis now; Verdict verdict; double closedTotal;
    int successfulDays; std::vector<int> missing, provisional, upcoming; std::optional<UnixMillis> reachedAt = {};
    std::optional<int> reachedDay = {};
  };
  const std::vector<Case> cases{
      {"dailyEveryDayMet", kDaily, {{0, k1000}, {1, k1000}, {2, k1000}}, kAfterEnd, Verdict::met, 3000, 3, {}, {}, {}},
      {"dailyNeedsEveryDayByDefault", kDaily, {{0, k1000}, {1, k1000}, {2, {{0, 999}}}}, kAfterEnd, Verdict::failed,
       2999, 2, {}, {}, {}},
      {"dailyTwoOfThreeRequired", requiring(kDaily, 2), {{0, k1000}, {1, {{0, 500}}}, {2, k1000}}, kAfterEnd,
       Verdict::met, 2500, 2, {}, {}, {}},
      {"dailyMissingDayStaysOpenWhileVerifying", kDaily, {{0, k1000}, {1, k1000}, {2, {}, kNoData}}, kAfterEnd,
       Verdict::open, 2000, 2, {2}, {}, {}},
      {"dailyUnreadDayIsMissingNotZero", kDaily, {{0, k1000}, {1, k1000}}, kAfterEnd, Verdict::open, 2000, 2, {2}, {},
       {}},
      {"dailyMissingDayFailsOnceVerificationCloses", kDaily, {{0, k1000}, {1, k1000}, {2, {}, kNoData}}, kAfterClose,
       Verdict::failed, 2000, 2, {2}, {}, {}},
      // Day 2 runs: 600 closed and 600 in the bucket still open; the open bucket does not meet the day.
      {"dailyProvisionalStepsDoNotMeetTheDay", kDaily, {{0, k1000}, {1, k1000}, {2, {{0, 600}, {1, 600}}}},
       inDay(2, 1) + 1, Verdict::open, 2600, 2, {}, {2}, {}},
      // Every day without a usable value is missing, the days still to come among them.
      {"dailyFailsAsSoonAsADayIsLost", kDaily, {{0, {{0, 10}}}}, inDay(1, 3), Verdict::failed, 10, 0, {1, 2}, {}, {2}},
      // Amounts are summed as read: 500.5 + 499.5 is 1000, not 999.
      {"dailyDecimalAmountsAreSummedBeforeRounding", requiring(kDaily, 1), {{0, {{0, 500.5}, {1, 499.5}}}},
       inDay(0, 3), Verdict::met, 1000, 1, {1, 2}, {}, {1, 2}},
      {"totalMetBeforeTheEnd", kTotal, {{0, k1000}, {1, {{0, 1600}}}}, inDay(1, 2), Verdict::met, 2600, 0, {2}, {},
       {2}},
      {"totalOpenWithAFailedRead", kTotal, {{0, k1000}, {1, {}, HealthEvidenceReadOutcome::readFailed}, {2, k1000}},
       kAfterEnd, Verdict::open, 2000, 0, {1}, {}, {}},
      {"firstToTargetReachedInTheSecondDay", kFirst, {{0, {{0, 1000}}}, {1, {{3, 300}, {5, 300}, {6, 900}}}},
       inDay(1, 10), Verdict::met, 2500, 1, {2}, {}, {2}, inDay(1, 6), 1},
      {"firstToTargetIgnoresTheOpenBucket", kFirst, {{0, {{0, 1000}}}, {1, {{3, 300}, {5, 300}}}}, inDay(1, 5) + 1,
       Verdict::open, 1300, 0, {2}, {1}, {2}},
      {"firstToTargetSkipsADayWithoutData", kFirst, {{0, {}, kNoData}, {1, {{2, 1500}}}}, inDay(2, 1), Verdict::met,
       1500, 1, {0, 2}, {}, {}, inDay(1, 3), 1},
      {"firstToTargetNeverReached", kFirst, {{0, k1000}, {1, {{0, 100}}}, {2, {{0, 100}}}}, kAfterClose,
       Verdict::failed, 1200, 0, {}, {}, {}},
      {"highestTotalReachesMinimum", withMinimum(kHighest, 2000), {{0, k1000}, {1, k1000}}, inDay(2, 1), Verdict::met,
       2000, 0, {2}, {}, {}},
      {"highestTotalBelowMinimumAtTheEnd", withMinimum(kHighest, 2000), {{0, k1000}, {1, {{0, 10}}}, {2, {{0, 10}}}},
       kAfterClose, Verdict::failed, 1020, 0, {}, {}, {}},
      {"highestTotalWithoutMinimumRanksEveryoneAtTheEnd", kHighest, {{0, {{0, 10}}}, {1, {{0, 10}}}, {2, {{0, 10}}}},
       kAfterEnd, Verdict::met, 30, 0, {}, {}, {}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    const auto e = evaluate(example.rules, example.reads, example.now);
    EXPECT_EQ(std::tuple(enumName(e.verdict), e.closedTotal, e.successfulDays, e.missingDays, e.provisionalDays,
                         e.upcomingDays, e.reachedAt, e.reachedDay, e.evidenceClosesAt),
              std::tuple(enumName(example.verdict), example.closedTotal, example.successfulDays, example.missing,
                         example.provisional, example.upcoming, example.reachedAt, example.reachedDay,
                         inDay(3, 0) + 24 * kHour));
  }
}

TEST(WalkingRaceRanking, OrdersMembersAndSharesTies) {
  auto reached = [](std::optional<UnixMillis> at) {
    WalkingEvidenceEvaluation evaluation;
    evaluation.reachedAt = at;
    return evaluation;
  };
  auto total = [](double steps) {
    WalkingEvidenceEvaluation evaluation;
    evaluation.closedTotal = steps;
    return evaluation;
  };
  struct Case {
    std::string name; Rules rules; std::vector<WalkingRaceEntrant> entrants; std::vector<WalkingRaceStanding> standings;
  };
  const std::vector<Case> cases{
      {"firstToTargetEarlierFirst",
       kFirst,
       {{"cem", reached(300)}, {"ayşe", reached(100)}, {"bora", reached({})}, {"deniz", reached(100)}},
       {{"ayşe", 1}, {"deniz", 1}, {"cem", 3}, {"bora", {}}}},
      {"highestTotalLargerFirstAndMinimum",
       withMinimum(kHighest, 1000),
       {{"a", total(5000)}, {"b", total(999)}, {"c", total(7000)}, {"d", total(5000)}, {"e", total(1000)}},
       {{"c", 1}, {"a", 2}, {"d", 2}, {"e", 4}, {"b", {}}}},
      {"goalRanksNobody", kDaily, {{"a", total(5000)}, {"b", total(10)}}, {{"a", {}}, {"b", {}}}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    EXPECT_EQ(rankWalkingRace(example.rules, example.entrants), example.standings);
  }
}

}  // namespace
}  // namespace kovi
