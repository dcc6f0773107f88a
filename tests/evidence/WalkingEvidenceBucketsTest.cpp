#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "KoviKit/evidence/V6WalkingObservation.h"
#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using Model = WalkingEvidenceBucketModel;
using testing::at;
using testing::bucketAt;
using testing::kBucket;
using testing::kMinute;

TEST(WalkingBucketModel, AlignsEdgesWithinAMillionthOfABucket) {
  const UnixMillis start = at("2026-05-04T14:37:00+03:00");
  struct Case {
    double secondsAfterStart;
    std::optional<std::int64_t> index;
  };
  for (const Case& example : {Case{0, 0}, Case{900, 1}, Case{899.9999, 1}, Case{900.0008, 1}, Case{899.99, {}},
                              Case{900.01, {}}, Case{450, {}}, Case{86400, 96}, Case{-900, -1}, Case{-899.99, {}},
                              Case{std::numeric_limits<double>::infinity(), {}}, Case{std::nan(""), {}}}) {
    SCOPED_TRACE(example.secondsAfterStart);
    const Date edge = Date::fromUnixMillis(static_cast<double>(start) + example.secondsAfterStart * 1000.0);
    EXPECT_EQ(Model::gridIndex(start, edge), example.index);
    EXPECT_EQ(Model::isAligned(start, edge), example.index.has_value());
  }
  // The first bucket of a kovi anchored at 14:37 closes at 14:52.
  EXPECT_EQ(Model::gridLine(start, 1), at("2026-05-04T14:52:00+03:00"));
}

struct SanitizeCase {
  std::string name;
  std::vector<HealthEvidenceBucket> buckets;  // relative to the day's start; see `day()`
  UnixMillis cutoffAfterStart;
  // Expected kept buckets as (cell, steps, provisional).
  std::vector<std::tuple<int, double, bool>> kept;
  double closedTotal;
  double total;
};

void PrintTo(const SanitizeCase& example, std::ostream* out) { *out << example.name; }

// Day 4 of a kovi, a 24-hour window starting at 0 ms so cases read in cells.
constexpr HealthEvidenceDayWindow kDay{4, 0, 96 * kBucket};

HealthEvidenceBucket cell(int index, double steps, bool provisional = false) {
  HealthEvidenceBucket bucket = bucketAt(0, index, steps);
  bucket.provisional = provisional;
  return bucket;
}

class WalkingBucketSanitizerTest : public ::testing::TestWithParam<SanitizeCase> {};

TEST_P(WalkingBucketSanitizerTest, KeepsTheBucketsOfTheDay) {
  const SanitizeCase& example = GetParam();
  const auto day =
      WalkingEvidenceBuckets::sanitize(kDay, HealthEvidenceReadOutcome::measured, example.buckets, example.cutoffAfterStart);
  ASSERT_TRUE(day.has_value()) << day.error().detail;
  std::vector<std::tuple<int, double, bool>> kept;
  for (const auto& bucket : day->buckets) {
    kept.emplace_back(static_cast<int>(bucket.start.unixMillis() / kBucket), bucket.amount, bucket.provisional);
    EXPECT_EQ(bucket.end.unixMillis() - bucket.start.unixMillis(), kBucket);
  }
  EXPECT_EQ(kept, example.kept);
  EXPECT_EQ(day->closedTotal, example.closedTotal);
  EXPECT_EQ(day->total, example.total);
  const bool anyProvisional = std::ranges::any_of(example.kept, [](const auto& k) { return std::get<2>(k); });
  EXPECT_EQ(day->provisional, anyProvisional);
}

constexpr UnixMillis kDayOver = 200 * kBucket;

INSTANTIATE_TEST_SUITE_P(
    Buckets, WalkingBucketSanitizerTest,
    ::testing::Values(
        SanitizeCase{"sortsByStart", {cell(3, 30), cell(1, 10), cell(2, 20)}, kDayOver,
                     {{1, 10, false}, {2, 20, false}, {3, 30, false}}, 60, 60},
        SanitizeCase{"dropsBucketsOfNeighbourDays", {cell(-1, 5), cell(0, 7), cell(95, 9), cell(96, 11)}, kDayOver,
                     {{0, 7, false}, {95, 9, false}}, 16, 16},
        SanitizeCase{"snapsEdgesWithinTolerance",
                     {{Date::fromUnixMillis(0.0004), Date::fromUnixMillis(899999.9999), 12, false}}, kDayOver,
                     {{0, 12, false}}, 12, 12},
        SanitizeCase{"keepsFractionalCounts", {cell(0, 10.75), cell(1, 0.5)}, kDayOver,
                     {{0, 10.75, false}, {1, 0.5, false}}, 11.25, 11.25},
        SanitizeCase{"dropsImpossibleCounts",
                     {cell(0, -3), cell(1, std::nan("")), cell(2, std::numeric_limits<double>::infinity()),
                      cell(3, 9007199254740992.0), cell(4, 40)},
                     kDayOver, {{4, 40, false}}, 40, 40},
        SanitizeCase{"duplicateKeepsTheLargerCount", {cell(5, 100), cell(5, 140), cell(5, 120)}, kDayOver,
                     {{5, 140, false}}, 140, 140},
        SanitizeCase{"duplicateKeepsClosedOverProvisional", {cell(5, 300, true), cell(5, 100)}, kDayOver,
                     {{5, 100, false}}, 100, 100},
        // The cutoff falls inside cell 2: its bucket and later ones are still open.
        SanitizeCase{"bucketsEndingAfterCutoffAreProvisional", {cell(0, 10), cell(1, 20), cell(2, 30), cell(3, 40)},
                     2 * kBucket + 5 * kMinute, {{0, 10, false}, {1, 20, false}, {2, 30, true}, {3, 40, true}}, 30,
                     100},
        SanitizeCase{"readersProvisionalFlagIsKept", {cell(0, 10, true)}, kDayOver, {{0, 10, true}}, 0, 10}),
    [](const auto& info) { return info.param.name; });

TEST(WalkingBucketSanitizer, RefusesTheDayForABucketOffTheGrid) {
  struct Case {
    std::string name;
    HealthEvidenceBucket bucket;
  };
  const double cellMillis = static_cast<double>(kBucket);
  for (const Case& example : {
           Case{"startOffGrid", {Date::fromUnixMillis(899990.0), Date::fromUnixMillis(2 * cellMillis), 5, false}},
           Case{"endOffGrid", {Date::fromUnixMillis(0), Date::fromUnixMillis(899990.0), 5, false}},
           Case{"twoCellsLong", {Date::fromUnixMillis(0), Date::fromUnixMillis(2 * cellMillis), 5, false}},
           Case{"endBeforeStart", {Date::fromUnixMillis(cellMillis), Date::fromUnixMillis(0), 5, false}},
           // Alignment is judged before the count: a misaligned bucket refuses the day even when dropped.
           Case{"offGridNegative", {Date::fromUnixMillis(1000), Date::fromUnixMillis(cellMillis), -1, false}},
       }) {
    SCOPED_TRACE(example.name);
    const std::vector<HealthEvidenceBucket> buckets{cell(0, 10), example.bucket};
    const auto day = WalkingEvidenceBuckets::sanitize(kDay, HealthEvidenceReadOutcome::measured, buckets, kDayOver);
    ASSERT_FALSE(day.has_value());
    EXPECT_EQ(day.error().code, "walking_bucket_alignment_invalid");
    EXPECT_NE(day.error().detail.find("day 4, bucket 1"), std::string::npos) << day.error().detail;
  }
}

TEST(WalkingBucketSanitizer, KeepsNoBucketsFromAReadThatWasNotMeasured) {
  const std::vector<HealthEvidenceBucket> buckets{cell(0, 10)};
  for (const auto outcome : {HealthEvidenceReadOutcome::noReadableData, HealthEvidenceReadOutcome::readFailed}) {
    SCOPED_TRACE(std::string(enumName(outcome)));
    const auto day = WalkingEvidenceBuckets::sanitize(kDay, outcome, buckets, kDayOver);
    ASSERT_TRUE(day.has_value());
    EXPECT_TRUE(day->buckets.empty());
    EXPECT_EQ(day->outcome, outcome);
    EXPECT_FALSE(day->value().lastClosedBucketEnd.has_value());
  }
}

TEST(WalkingBucketSanitizer, DayValueEndsAtTheLastClosedBucket) {
  const std::vector<HealthEvidenceBucket> buckets{cell(0, 10), cell(7, 20), cell(8, 30)};
  const auto day = WalkingEvidenceBuckets::sanitize(kDay, HealthEvidenceReadOutcome::measured, buckets, 8 * kBucket + 1);
  ASSERT_TRUE(day.has_value());
  const WalkingEvidenceDayValue value = day->value();
  EXPECT_EQ(value.day, 4);
  EXPECT_EQ(value.lastClosedBucketEnd, 8 * kBucket);
  EXPECT_EQ(value.closedTotal, 30);
  EXPECT_EQ(value.total, 60);
  EXPECT_TRUE(value.provisional);
}

}  // namespace
}  // namespace kovi
