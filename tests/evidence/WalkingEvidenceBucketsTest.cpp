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

// A step count of sanitized-days.json: a number, or "nan" / "inf" where JSON has none.
double stepsOf(const nlohmann::json& steps) {
  return steps.is_string() ? std::stod(steps.get<std::string>()) : steps.get<double>();
}

// sanitized-days.json: buckets read for the day, as [cell, steps, provisional]
// or by their edges in milliseconds, with the cutoff (default: the day is
// over) and the buckets kept with the day's totals.
TEST(WalkingBucketSanitizer, KeepsTheBucketsOfTheDay) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("sanitized-days.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    std::vector<HealthEvidenceBucket> buckets;
    for (const auto& read : example["buckets"]) {
      buckets.push_back(read.is_object() ? HealthEvidenceBucket{Date::fromUnixMillis(read["from"].get<double>()),
                                                                Date::fromUnixMillis(read["to"].get<double>()),
                                                                read["steps"].get<double>(), false}
                                         : cell(read[0], stepsOf(read[1]), read.size() > 2 && read[2].get<bool>()));
    }
    const auto day = sanitize(buckets, example.value("cutoff", kDayOver));
    ASSERT_TRUE(day.has_value()) << day.error().detail;
    nlohmann::json kept = nlohmann::json::array();
    for (const auto& bucket : day->buckets) {
      kept.push_back({bucket.start.unixMillis() / kBucket, bucket.amount, bucket.provisional});
      EXPECT_EQ(bucket.end.unixMillis() - bucket.start.unixMillis(), kBucket);
    }
    EXPECT_EQ(kept, example["kept"]);
    EXPECT_EQ(day->closedTotal, example["closedTotal"].get<double>());
    EXPECT_EQ(day->total, example["total"].get<double>());
    EXPECT_EQ(day->provisional, std::ranges::any_of(kept, [](const auto& k) { return k[2].template get<bool>(); }));
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
