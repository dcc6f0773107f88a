#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using Model = WalkingEvidenceBucketModel;
using testing::kBucket;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(WalkingBucketModel, AlignsEdgesWithinAMillionthOfABucket) {
  const UnixMillis start = testing::at("2026-05-04T14:37:00+03:00");
  struct Case { double secondsAfterStart; std::optional<std::int64_t> index; };
  for (const Case& example : {Case{0, 0}, Case{900, 1}, Case{899.9999, 1}, Case{900.0008, 1}, Case{899.99, {}},
                              Case{900.01, {}}, Case{-900, -1}, Case{-899.99, {}}, Case{kInfinity, {}},
                              Case{std::nan(""), {}}}) {
    SCOPED_TRACE(example.secondsAfterStart);
    const Date edge = Date::fromUnixMillis(static_cast<double>(start) + example.secondsAfterStart * 1000.0);
    EXPECT_EQ(Model::gridIndex(start, edge), example.index);
    EXPECT_EQ(Model::isAligned(start, edge), example.index.has_value());
  }
  // The first bucket of a kovi anchored at 14:37 closes at 14:52.
  EXPECT_EQ(Model::gridLine(start, 1), testing::at("2026-05-04T14:52:00+03:00"));
}

// Day 4 of a kovi, a 24-hour window starting at 0 ms so cases read in cells.
constexpr HealthEvidenceDayWindow kDay{4, 0, 96 * kBucket};
constexpr UnixMillis kDayOver = 200 * kBucket;

HealthEvidenceBucket cell(int index, double steps, bool provisional = false) {
  HealthEvidenceBucket bucket = testing::bucketAt(0, index, steps);
  bucket.provisional = provisional;
  return bucket;
}

HealthEvidenceBucket span(double startMillis, double endMillis) {
  return {Date::fromUnixMillis(startMillis), Date::fromUnixMillis(endMillis), 5, false};
}

auto sanitize(const std::vector<HealthEvidenceBucket>& buckets, UnixMillis cutoff = kDayOver) {
  return WalkingEvidenceBuckets::sanitize(kDay, HealthEvidenceReadOutcome::measured, buckets, cutoff);
}

TEST(WalkingBucketSanitizer, KeepsTheBucketsOfTheDay) {
  struct Case {
    std::string name;
    std::vector<HealthEvidenceBucket> buckets;
    UnixMillis cutoff;
    std::vector<std::tuple<int, double, bool>> kept;  // (cell, steps, provisional)
    double closedTotal;
    double total;
  };
  const std::vector<Case> cases{
      {"sortsByStart", {cell(3, 30), cell(1, 10), cell(2, 20)}, kDayOver,
       {{1, 10, false}, {2, 20, false}, {3, 30, false}}, 60, 60},
      {"dropsBucketsOfNeighbourDays", {cell(-1, 5), cell(0, 7), cell(95, 9), cell(96, 11)}, kDayOver,
       {{0, 7, false}, {95, 9, false}}, 16, 16},
      {"snapsEdgesWithinTolerance", {{Date::fromUnixMillis(0.0004), Date::fromUnixMillis(899999.9999), 12, false}},
       kDayOver, {{0, 12, false}}, 12, 12},
      {"keepsFractionalCounts", {cell(0, 10.75), cell(1, 0.5)}, kDayOver, {{0, 10.75, false}, {1, 0.5, false}}, 11.25,
       11.25},
      {"dropsImpossibleCounts",
       {cell(0, -3), cell(1, std::nan("")), cell(2, kInfinity), cell(3, 9007199254740992.0), cell(4, 40)}, kDayOver,
       {{4, 40, false}}, 40, 40},
      {"duplicateKeepsTheLargerCount", {cell(5, 100), cell(5, 140), cell(5, 120)}, kDayOver, {{5, 140, false}}, 140,
       140},
      {"duplicateKeepsClosedOverProvisional", {cell(5, 300, true), cell(5, 100)}, kDayOver, {{5, 100, false}}, 100,
       100},
      // The cutoff falls inside cell 2: its bucket and later ones are still open.
      {"bucketsEndingAfterCutoffAreProvisional", {cell(0, 10), cell(1, 20), cell(2, 30), cell(3, 40)},
       2 * kBucket + 5 * testing::kMinute, {{0, 10, false}, {1, 20, false}, {2, 30, true}, {3, 40, true}}, 30, 100},
      {"readersProvisionalFlagIsKept", {cell(0, 10, true)}, kDayOver, {{0, 10, true}}, 0, 10},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    const auto day = sanitize(example.buckets, example.cutoff);
    ASSERT_TRUE(day.has_value()) << day.error().detail;
    std::vector<std::tuple<int, double, bool>> kept;
    for (const auto& bucket : day->buckets) {
      kept.emplace_back(static_cast<int>(bucket.start.unixMillis() / kBucket), bucket.amount, bucket.provisional);
      EXPECT_EQ(bucket.end.unixMillis() - bucket.start.unixMillis(), kBucket);
    }
    EXPECT_EQ(kept, example.kept);
    EXPECT_EQ(day->closedTotal, example.closedTotal);
    EXPECT_EQ(day->total, example.total);
    EXPECT_EQ(day->provisional, std::ranges::any_of(example.kept, [](const auto& k) { return std::get<2>(k); }));
  }
}

TEST(WalkingBucketSanitizer, RefusesTheDayForABucketOffTheGrid) {
  const double cellMillis = static_cast<double>(kBucket);
  HealthEvidenceBucket offGridNegative = span(1000, cellMillis);
  offGridNegative.amount = -1;  // alignment is judged before the count: dropped buckets still refuse the day
  for (const HealthEvidenceBucket& bucket : {span(899990, 2 * cellMillis), span(0, 899990), span(0, 2 * cellMillis),
                                             span(cellMillis, 0), offGridNegative}) {
    SCOPED_TRACE(bucket.start.unixMillis());
    const auto day = sanitize({cell(0, 10), bucket});
    ASSERT_FALSE(day.has_value());
    EXPECT_EQ(day.error().code, "walking_bucket_alignment_invalid");
    EXPECT_NE(day.error().detail.find("day 4, bucket 1"), std::string::npos) << day.error().detail;
  }
}

TEST(WalkingBucketSanitizer, KeepsNoBucketsFromAReadThatWasNotMeasured) {
  for (const auto outcome : {HealthEvidenceReadOutcome::noReadableData, HealthEvidenceReadOutcome::readFailed}) {
    SCOPED_TRACE(std::string(enumName(outcome)));
    const auto day = WalkingEvidenceBuckets::sanitize(kDay, outcome, std::vector{cell(0, 10)}, kDayOver);
    ASSERT_TRUE(day.has_value());
    EXPECT_TRUE(day->buckets.empty());
    EXPECT_EQ(day->outcome, outcome);
    EXPECT_FALSE(day->value().lastClosedBucketEnd.has_value());
  }
}

TEST(WalkingBucketSanitizer, DayValueEndsAtTheLastClosedBucket) {
  const auto day = sanitize({cell(0, 10), cell(7, 20), cell(8, 30)}, 8 * kBucket + 1);
  ASSERT_TRUE(day.has_value());
  EXPECT_EQ(day->value(), (WalkingEvidenceDayValue{4, kDay, 60, 30, 8 * kBucket, true}));
}

}  // namespace
}  // namespace kovi
