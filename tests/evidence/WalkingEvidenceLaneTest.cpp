#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingEvidenceBackoffStore.h"
#include "KoviKit/evidence/WalkingEvidenceLane.h"
#include "KoviKit/evidence/WalkingProgressSummary.h"
#include "KoviKit/foundation/Json.h"
#include "WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using testing::at;
using testing::kHour;
using testing::kMinute;
using Lane = WalkingEvidenceLane;

// lanes.json: rows of a name, the hour and extra milliseconds of `now`, and the lane with the upload's visibility
// without and with missing days, for a kovi running from hour 1000 to 1072 and verified until hour 1096.
TEST(WalkingEvidenceSchedule, PlacesTheKoviInItsLaneAndShowsTheUpload) {
  const WalkingEvidenceSchedule schedule{1000 * kHour, 1072 * kHour, 1096 * kHour};
  for (const auto& row : nlohmann::json::parse(testing::evidenceData("lanes.json"))) {
    SCOPED_TRACE(row[0].get<std::string>());
    const Lane lane = schedule.laneAt(row[1].get<UnixMillis>() * kHour + row[2].get<UnixMillis>());
    EXPECT_EQ(nlohmann::json::array({enumName(lane), enumName(WalkingEvidenceSchedule::visibility(lane, false)),
                                     enumName(WalkingEvidenceSchedule::visibility(lane, true))}),
              nlohmann::json::array({row[3], row[4], row[5]}));
  }
}

TEST(WalkingEvidenceBackoff, DoublesTransientWaitsAndWaitsFixedTimesForTheRest) {
  using Failure = WalkingEvidenceFailure;
  struct Step { Failure failure; int failures; UnixMillis wait; };
  // One sequence of failures from a clean state, each at `now`.
  const std::vector<Step> steps{
      {Failure::transient, 1, 1 * kMinute},       {Failure::transient, 2, 2 * kMinute},
      {Failure::noData, 2, 15 * kMinute},         {Failure::transient, 3, 4 * kMinute},
      {Failure::transient, 4, 8 * kMinute},       {Failure::transient, 5, 16 * kMinute},
      {Failure::transient, 6, 32 * kMinute},      {Failure::transient, 7, 60 * kMinute},
      {Failure::transient, 8, 60 * kMinute},      {Failure::attestation, 8, 5 * kMinute},
      {Failure::rejected, 8, 1 * kMinute},        {Failure::attestationUnsupported, 8, 24 * kHour},
  };
  const UnixMillis now = at("2026-05-04T12:00:00Z");
  WalkingEvidenceBackoff backoff;
  EXPECT_TRUE(backoff.allowsAttempt(now));
  for (std::size_t index = 0; index < steps.size(); ++index) {
    SCOPED_TRACE(index);
    backoff = backoff.afterFailure(steps[index].failure, now);
    EXPECT_EQ(backoff, (WalkingEvidenceBackoff{steps[index].failures, now + steps[index].wait}));
    EXPECT_FALSE(backoff.allowsAttempt(now + steps[index].wait - 1));
    EXPECT_TRUE(backoff.allowsAttempt(now + steps[index].wait));
  }
  EXPECT_EQ(WalkingEvidenceBackoff::afterSuccess(), WalkingEvidenceBackoff{});
}

TEST(WalkingEvidenceBackoffStoreTest, OnlyTransientFailuresAreStoredAndTheyCountAcrossRuns) {
  const testing::TemporaryDirectory directory;
  const UnixMillis now = at("2026-05-04T08:00:00Z");
  const struct { WalkingEvidenceFailure failure; WalkingEvidenceBackoff stored; } steps[] = {
      {WalkingEvidenceFailure::rejected, {}},
      {WalkingEvidenceFailure::transient, {1, now + kMinute}},
      {WalkingEvidenceFailure::noData, {1, now + kMinute}},
      {WalkingEvidenceFailure::attestation, {1, now + kMinute}},
      {WalkingEvidenceFailure::transient, {2, now + 2 * kMinute}},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(enumName(step.failure));
    // A store of its own each time: what counts is on disk.
    WalkingEvidenceBackoffStore store(directory.path());
    EXPECT_EQ(store.recordFailure("actor-1", step.failure, now), step.stored);
    EXPECT_EQ(WalkingEvidenceBackoffStore(directory.path()).load("actor-1"), step.stored);
  }
  WalkingEvidenceBackoffStore store(directory.path());
  EXPECT_EQ(store.load("actor-2"), WalkingEvidenceBackoff{}) << "owners are kept apart";
  ASSERT_TRUE(store.clear("actor-1").has_value());
  EXPECT_EQ(store.load("actor-1"), WalkingEvidenceBackoff{});
}

class WalkingProgressSummaryTest : public ::testing::Test {
 protected:
  WalkingProgressSummaryTest() {
    rules_.dayBoundary = WalkingDayBoundary::calendar;
    rules_.firstDay = WalkingKoviRules::FirstDay::midnight;
    rules_.timezone = "Europe/Istanbul";
    windows_ = WalkingDayWindowPlanner::plan(rules_, start_).value();
  }

  WalkingEvidenceEvaluation evaluationWith(std::vector<std::pair<int, double>> totals) const {
    WalkingEvidenceEvaluation evaluation;
    for (const auto& [day, total] : totals) {
      evaluation.days[day] = {day, windows_[day], total, total - 100, {}, true, HealthEvidenceReadOutcome::measured};
    }
    return evaluation;
  }

  WalkingKoviRules rules_ = testing::dailyGoal(3, 8000);
  UnixMillis start_ = at("2026-05-04T23:50:00+03:00");
  std::vector<HealthEvidenceDayWindow> windows_;
};

TEST_F(WalkingProgressSummaryTest, ShowsTodaysStepsForADailyGoalAndTheSumOtherwise) {
  struct Case {
    std::string name; bool daily; std::vector<std::pair<int, double>> totals; UnixMillis now;
    std::optional<double> steps; std::optional<UnixMillis> dayEndsAt; bool waits;
  };
  const std::vector<Case> cases{
      {"beforeTheFirstMidnight", true, {}, at("2026-05-04T23:55:00+03:00"), {}, {}, true},
      {"dailyToday", true, {{0, 9000}, {1, 4200}}, at("2026-05-06T10:00:00+03:00"), 4200,
       at("2026-05-07T00:00:00+03:00"), false},
      {"dailyTodayNotReadYet", true, {{0, 9000}}, at("2026-05-06T10:00:00+03:00"), {},
       at("2026-05-07T00:00:00+03:00"), false},
      {"totalSoFar", false, {{0, 9000}, {1, 4200}}, at("2026-05-06T10:00:00+03:00"), 13200,
       at("2026-05-07T00:00:00+03:00"), false},
      {"afterTheLastDay", false, {{0, 1}, {1, 2}, {2, 3}}, at("2026-05-09T10:00:00+03:00"), 6, {}, false},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    WalkingKoviRules rules = rules_;
    if (!example.daily) rules.goalMode = WalkingKoviRules::GoalMode::total;
    const auto summary =
        WalkingProgressSummary::summarize(rules, start_, windows_, evaluationWith(example.totals), example.now);
    EXPECT_EQ(std::tuple(summary.steps, summary.target, summary.isDaily, summary.dayEndsAt, summary.waitsForFirstDay,
                         summary.needsDayRefresh),
              std::tuple(example.steps, 8000, example.daily, example.dayEndsAt, example.waits, false));
  }
}

TEST_F(WalkingProgressSummaryTest, StoredProgressOfAnEarlierDayNeedsARefresh) {
  const UnixMillis now = at("2026-05-06T10:00:00+03:00");
  struct Case { std::string name; WalkingProgressSummary::Stored stored; bool refresh; };
  for (const Case& example : {
           Case{"storedThisMorning", {at("2026-05-06T08:00:00+03:00"), at("2026-05-07T00:00:00+03:00")}, false},
           Case{"storedYesterday", {at("2026-05-05T22:00:00+03:00"), at("2026-05-06T00:00:00+03:00")}, true},
           Case{"storedYesterdayWithoutDayEnd", {at("2026-05-05T22:00:00+03:00"), {}}, true},
           Case{"storedDayEndedJustNow", {at("2026-05-06T08:00:00+03:00"), now}, true},
       }) {
    SCOPED_TRACE(example.name);
    EXPECT_EQ(WalkingProgressSummary::needsRefresh(example.stored, windows_, now), example.refresh);
    EXPECT_EQ(WalkingProgressSummary::summarize(rules_, start_, windows_, {}, now, example.stored).needsDayRefresh,
              example.refresh);
  }
}

}  // namespace
}  // namespace kovi
