#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>
#include <string>
#include <vector>

#include "KoviKit/evidence/V6WalkingSyncPlanner.h"
#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/foundation/Sha256.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using testing::bucketAt;
using testing::kBucket;
using Planner = V6WalkingSyncPlanner;

class V6WalkingSyncPlannerTest : public ::testing::Test {
 protected:
  V6WalkingSyncPlannerTest() {
    context_.rules = testing::dailyGoal(2, 8000);
    context_.rulesHash = context_.rules.rulesHash();
    context_.windows = WalkingDayWindowPlanner::plan(context_.rules, start_).value();
    context_.sourcePolicy = std::string(V6WalkingObservation::kSourcePolicy);
  }

  HealthEvidenceDayRead measured(int day, std::vector<std::pair<int, double>> cells) const {
    HealthEvidenceDayRead read{day, HealthEvidenceReadOutcome::measured, {}};
    for (const auto& [cell, steps] : cells) read.buckets.push_back(bucketAt(context_.windows[day].start, cell, steps));
    return read;
  }

  // The payload hash of day 0 read as `measured(0, cells)` at `cutoff_`.
  std::string payloadHashOf(std::vector<std::pair<int, double>> cells) const {
    const auto plans = Planner::plan(context_, {measured(0, std::move(cells))}, cutoff_).value();
    return std::get<Planner::Submit>(plans[0].outcome).payloadHash;
  }

  UnixMillis start_ = at("2026-05-04T14:37:00+03:00");
  UnixMillis cutoff_ = at("2026-05-06T09:00:00+03:00");  // day 1 runs
  V6WalkingContext context_;
};

TEST_F(V6WalkingSyncPlannerTest, SubmitsNewDaysWithTheServersRevisionAndSkipsUnchangedOnes) {
  const std::vector<std::pair<int, double>> cells{{0, 120}, {1, 80}};
  const std::string hash = payloadHashOf(cells);
  std::string upperHash = hash;
  std::ranges::transform(upperHash, upperHash.begin(), [](unsigned char c) { return std::toupper(c); });

  struct Case {
    std::string name;
    std::vector<V6WalkingContext::Revision> revisions;
    std::optional<std::int64_t> expectedRevision;  // nullopt: unchanged
  };
  const std::vector<Case> cases{
      {"firstSubmission", {}, 0},
      {"serverHoldsAnotherPayload", {{0, 3, std::string(64, 'a'), {}, nullptr}}, 3},
      {"serverHoldsThisPayload", {{0, 3, hash, at("2026-05-05T16:00:00+03:00"), nullptr}}, std::nullopt},
      {"serverHoldsThisPayloadInCapitals", {{0, 4, upperHash, {}, nullptr}}, std::nullopt},
      {"revisionOfAnotherDayOnly", {{1, 9, hash, {}, nullptr}}, 0},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    context_.revisions = example.revisions;
    const auto plans = Planner::plan(context_, {measured(0, cells)}, cutoff_);
    ASSERT_TRUE(plans.has_value()) << plans.error().detail;
    ASSERT_EQ(plans->size(), 2u);
    if (!example.expectedRevision) {
      EXPECT_EQ((*plans)[0].outcome, Planner::DayOutcome(Planner::Unchanged{}));
      continue;
    }
    const auto* submit = std::get_if<Planner::Submit>(&(*plans)[0].outcome);
    ASSERT_NE(submit, nullptr);
    EXPECT_EQ(std::tuple(submit->entry.day, submit->entry.expectedRevision, submit->payloadHash,
                         sha256Hex(submit->entry.observation.payloadText())),
              std::tuple(0, *example.expectedRevision, hash, hash));
  }
  // Different steps make a different payload.
  EXPECT_NE(payloadHashOf({{0, 120}, {1, 81}}), hash);
}

TEST_F(V6WalkingSyncPlannerTest, PlansNoDataOrFailureFromTheRead) {
  struct Case {
    std::string name;
    std::vector<HealthEvidenceDayRead> reads;
    bool failed;  // Failed rather than NoData
    std::string code;
  };
  HealthEvidenceDayRead offGrid = measured(0, {{0, 10}});
  offGrid.buckets[0].start = offGrid.buckets[0].start.addingMillis(10);
  using Outcome = HealthEvidenceReadOutcome;
  const std::vector<Case> cases{
      {"notRead", {}, false, "walking_no_readable_data"},
      {"noReadableData", {{0, Outcome::noReadableData, {}}}, false, "walking_no_readable_data"},
      {"readFailed", {{0, Outcome::readFailed, {}}}, true, "walking_health_read_failed"},
      {"sharingOff", {{0, Outcome::authorizationRequestNotCompleted, {}}}, true, "walking_health_sharing_disabled"},
      {"offGrid", {offGrid}, true, "walking_bucket_alignment_invalid"},
      {"measuredButEmpty", {measured(0, {})}, false, "walking_no_closed_bucket"},
      // Day 1 runs at the cutoff, 18 h 23 min in: its only bucket, cell 73, is still open.
      {"onlyBucketStillOpen", {measured(1, {{73, 300}})}, false, "walking_no_closed_bucket"},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    const auto plans = Planner::plan(context_, example.reads, cutoff_);
    ASSERT_TRUE(plans.has_value());
    const auto& outcome = (*plans)[example.reads.empty() ? 0 : example.reads[0].day].outcome;
    const auto* failed = std::get_if<Planner::Failed>(&outcome);
    const auto* none = std::get_if<Planner::NoData>(&outcome);
    ASSERT_TRUE(example.failed ? failed != nullptr : none != nullptr);
    EXPECT_EQ(example.failed ? failed->reason.code : none->reason.code, example.code);
  }
}

TEST_F(V6WalkingSyncPlannerTest, RefusesAContextThatDoesNotVerify) {
  struct Case {
    std::string name;
    std::function<void(V6WalkingContext&)> edit;
    std::string code;
  };
  const std::vector<Case> cases{
      {"rulesChangedAfterHashing", [](V6WalkingContext& c) { c.rules.stepTarget = 9000; },
       "walking_rules_hash_mismatch"},
      {"windowShiftedByAMinute", [](V6WalkingContext& c) { c.windows[1].end += testing::kMinute; },
       "walking_day_windows_invalid"},
      {"noWindows", [](V6WalkingContext& c) { c.windows.clear(); }, "walking_day_windows_invalid"},
      {"rulesFixWindowsThatDisagree",
       [](V6WalkingContext& c) {
         c.rules.dayWindows = std::vector<WalkingDayWindow>{{c.windows[0].start, c.windows[0].end}};
         c.rulesHash = c.rules.rulesHash();
       },
       "walking_day_windows_invalid"},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    V6WalkingContext context = context_;
    example.edit(context);
    const auto plans = Planner::plan(context, {measured(0, {{0, 10}})}, cutoff_);
    ASSERT_FALSE(plans.has_value());
    EXPECT_EQ(plans.error().code, example.code);
  }
}

TEST(V6WalkingWriterDecision, SignsOnlyAsTheWriter) {
  const std::vector<std::string> replaced{"key-old-1", "key-old-2"};
  // writer-decisions.json: the writer the service names (null: none) and the decision for key-now.
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("writer-decisions.json"))) {
    SCOPED_TRACE(example.dump());
    const auto writer = example[0].is_null() ? std::nullopt : std::optional(example[0].get<std::string>());
    EXPECT_EQ(enumName(Planner::writerDecision(writer, "key-now", replaced)), example[1].get<std::string>());
  }
}

}  // namespace
}  // namespace kovi
