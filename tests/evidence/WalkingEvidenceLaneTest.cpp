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
  // backoff-steps.json: one sequence of failures from a clean state, each at `now`, with the failure count
  // and the wait after it.
  const UnixMillis now = at("2026-05-04T12:00:00Z");
  WalkingEvidenceBackoff backoff;
  EXPECT_TRUE(backoff.allowsAttempt(now));
  for (const auto& step : nlohmann::json::parse(testing::evidenceData("backoff-steps.json"))) {
    SCOPED_TRACE(step.dump());
    const auto failure = enumFromName<WalkingEvidenceFailure>(step[0].get<std::string>());
    ASSERT_TRUE(failure.has_value());
    const UnixMillis wait = step[2];
    backoff = backoff.afterFailure(*failure, now);
    EXPECT_EQ(backoff, (WalkingEvidenceBackoff{step[1], now + wait}));
    EXPECT_FALSE(backoff.allowsAttempt(now + wait - 1));
    EXPECT_TRUE(backoff.allowsAttempt(now + wait));
  }
  EXPECT_EQ(WalkingEvidenceBackoff::afterSuccess(), WalkingEvidenceBackoff{});
}

TEST(WalkingEvidenceBackoffStoreTest, OnlyTransientFailuresAreStoredAndTheyCountAcrossRuns) {
  const testing::TemporaryDirectory directory;
  const UnixMillis now = at("2026-05-04T08:00:00Z");
  // stored-backoffs.json: failures one after another, each with the failure count and the minutes to wait
  // (null: nothing stored) that the store keeps after it.
  for (const auto& step : nlohmann::json::parse(testing::evidenceData("stored-backoffs.json"))) {
    SCOPED_TRACE(step.dump());
    const auto failure = enumFromName<WalkingEvidenceFailure>(step[0].get<std::string>());
    ASSERT_TRUE(failure.has_value());
    const WalkingEvidenceBackoff stored{
        step[1], step[2].is_null() ? std::nullopt : std::optional(now + step[2].get<UnixMillis>() * kMinute)};
    // A store of its own each time: what counts is on disk.
    WalkingEvidenceBackoffStore store(directory.path());
    EXPECT_EQ(store.recordFailure("actor-1", *failure, now), stored);
    EXPECT_EQ(WalkingEvidenceBackoffStore(directory.path()).load("actor-1"), stored);
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
  // progress-summaries.json: the goal (daily or total), the day totals read, `now`, and what the summary shows.
  const auto optionalAt = [](const nlohmann::json& iso) {
    return iso.is_null() ? std::nullopt : std::optional(at(iso.get<std::string>()));
  };
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("progress-summaries.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    WalkingKoviRules rules = rules_;
    if (!example["daily"]) rules.goalMode = WalkingKoviRules::GoalMode::total;
    const auto summary = WalkingProgressSummary::summarize(
        rules, start_, windows_, evaluationWith(example["totals"]), at(example["now"].get<std::string>()));
    const auto steps = example["steps"].is_null() ? std::nullopt : std::optional(example["steps"].get<double>());
    EXPECT_EQ(std::tuple(summary.steps, summary.target, summary.isDaily, summary.dayEndsAt, summary.waitsForFirstDay,
                         summary.needsDayRefresh),
              std::tuple(steps, 8000, example["daily"].get<bool>(), optionalAt(example["dayEndsAt"]),
                         example["waits"].get<bool>(), false));
  }
}

TEST_F(WalkingProgressSummaryTest, StoredProgressOfAnEarlierDayNeedsARefresh) {
  const UnixMillis now = at("2026-05-06T10:00:00+03:00");
  // stored-progress.json: when progress was stored, the end of the day it was stored in (null: unknown),
  // and whether it needs a refresh at `now`.
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("stored-progress.json"))) {
    SCOPED_TRACE(example.dump());
    const WalkingProgressSummary::Stored stored{
        at(example[0].get<std::string>()),
        example[1].is_null() ? std::nullopt : std::optional(at(example[1].get<std::string>()))};
    const bool refresh = example[2];
    EXPECT_EQ(WalkingProgressSummary::needsRefresh(stored, windows_, now), refresh);
    EXPECT_EQ(WalkingProgressSummary::summarize(rules_, start_, windows_, {}, now, stored).needsDayRefresh,
              refresh);
  }
}

}  // namespace
}  // namespace kovi
