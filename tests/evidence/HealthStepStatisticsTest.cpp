#include <gtest/gtest.h>

#include <algorithm>

#include "KoviKit/evidence/HealthStepStatistics.h"
#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "KoviKit/foundation/Json.h"
#include "tests/evidence/WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using testing::kBucket;
using testing::kMinute;

const UnixMillis kDay0 = at("2026-03-02T00:00:00+03:00");
const UnixMillis kDay1 = kDay0 + 24 * testing::kHour;
const std::vector<HealthEvidenceDayWindow> kTwoDays{{0, kDay0, kDay1}, {1, kDay1, kDay1 + 24 * testing::kHour}};

HealthStepSample sample(UnixMillis start, UnixMillis minutes, double value, std::string source = "Apple Watch") {
  return {start, start + minutes * kMinute, value, std::move(source)};
}

// (bucket index from the day's start, amount) of every reported bucket.
using Cells = std::vector<std::pair<UnixMillis, double>>;
Cells cellsOf(const HealthEvidenceDayRead& read, UnixMillis dayStart) {
  Cells cells;
  for (const auto& bucket : read.buckets) {
    EXPECT_EQ(bucket.end.unixMillis() - bucket.start.unixMillis(), kBucket);
    cells.emplace_back((bucket.start.unixMillis() - dayStart) / kBucket, bucket.amount);
  }
  return cells;
}

// step-buckets.json: rows of a name, samples as [minutes after day 0's midnight, length in minutes, steps,
// source (else the watch)], the listed sources, and the (bucket, steps) of day 0 and of day 1.
TEST(HealthStepStatisticsTest, SumsEachBucketOnce) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("step-buckets.json"))) {
    SCOPED_TRACE(example[0].get<std::string>());
    std::vector<HealthStepSample> samples;
    for (const auto& s : example[1]) {
      const std::string source = s.size() > 3 ? s[3].get<std::string>() : "Apple Watch";
      samples.push_back(sample(kDay0 + s[0].get<UnixMillis>() * kMinute, s[1].get<UnixMillis>(), s[2], source));
    }
    const auto days = bucketStepSamples(samples, {kTwoDays, kDay1 + 48 * testing::kHour, std::nullopt},
                                        HealthSourcePriority(example[2].get<std::vector<std::string>>()));
    ASSERT_EQ(days.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      const auto expected = example[3 + i].get<Cells>();
      EXPECT_EQ(cellsOf(days[i], i == 0 ? kDay0 : kDay1), expected);
      EXPECT_EQ(days[i].outcome, expected.empty() ? HealthEvidenceReadOutcome::noReadableData
                                                  : HealthEvidenceReadOutcome::measured);
    }
  }
}

TEST(HealthStepStatisticsTest, BucketsEndingAfterTheCutoffAreProvisional) {
  const UnixMillis cutoff = kDay0 + 20 * kMinute;  // inside bucket 1
  const auto days = bucketStepSamples(std::vector{sample(kDay0, 30, 300)}, {{kTwoDays[0]}, cutoff, std::nullopt},
                                      HealthSourcePriority());
  ASSERT_EQ(days.at(0).buckets.size(), 2u);
  EXPECT_FALSE(days[0].buckets[0].provisional);
  EXPECT_TRUE(days[0].buckets[1].provisional);
}

// Calendar days across the daylight-saving changes of Berlin in 2026 are 23
// and 25 hours long: a sample covering the whole day reaches 92 and 100
// buckets, each on the day's grid, and the sanitiser keeps all of them.
TEST(HealthStepStatisticsTest, DaylightSavingDaysHave92And100Buckets) {
  for (const auto& [start, expected] : {std::pair{"2026-03-29T00:00:00+01:00", 92u},
                                        std::pair{"2026-10-25T00:00:00+02:00", 100u}}) {
    auto rules = testing::dailyGoal(1, 1000);
    rules.dayBoundary = WalkingDayBoundary::calendar;
    rules.timezone = "Europe/Berlin";
    rules.firstDay = WalkingKoviRules::FirstDay::today;
    const auto windows = WalkingDayWindowPlanner::plan(rules, at(start));
    ASSERT_TRUE(windows.has_value()) << windows.error();
    const auto& window = windows->at(0);
    const UnixMillis length = window.end - window.start;
    const double steps = static_cast<double>(length / kMinute);  // one step a minute
    const HealthEvidenceReadRequest request{*windows, window.end, std::nullopt};
    const auto days =
        bucketStepSamples(std::vector{HealthStepSample{window.start, window.end, steps, "Watch"}}, request, {});
    ASSERT_EQ(days.at(0).buckets.size(), expected) << start;
    const auto sanitized = WalkingEvidenceBuckets::sanitize(window, days[0].outcome, days[0].buckets, window.end);
    ASSERT_TRUE(sanitized.has_value()) << start;
    EXPECT_EQ(sanitized->buckets.size(), expected);
    EXPECT_DOUBLE_EQ(sanitized->closedTotal, steps) << start;
  }
}

TEST(HealthStepStatisticsTest, AWindowThatIsNoDayFailsToRead) {
  const std::vector<HealthEvidenceDayWindow> windows{{0, kDay0, kDay0}, {1, kDay0, kDay0 + 72 * testing::kHour}};
  const auto days = bucketStepSamples(std::vector{sample(kDay0, 10, 10)}, {windows, kDay0, std::nullopt}, {});
  EXPECT_EQ(days.at(0).outcome, HealthEvidenceReadOutcome::readFailed);
  EXPECT_EQ(days.at(1).outcome, HealthEvidenceReadOutcome::readFailed);
}

TEST(HealthStepStatisticsTest, ReadingAsksTheStoreOnceForAllDaysOrNotAtAllWithoutPermission) {
  testing::FixedStore store;
  store.answer = std::vector{sample(kDay1 + kMinute, 5, 42)};
  auto reading = readHealthEvidence(store, {kTwoDays, kDay1 + 48 * testing::kHour, std::nullopt}, {});
  EXPECT_EQ(store.asked, (std::vector{std::pair{kDay0, kDay1 + 24 * testing::kHour}}));
  EXPECT_EQ(reading.result.authorization, HealthEvidenceAuthorization::unknown);
  EXPECT_EQ(reading.result.days.at(1).buckets.at(0).amount, 42);
  EXPECT_FALSE(reading.failure);

  store.answer = std::unexpected(std::string("export.xml line 3: unclosed token"));
  reading = readHealthEvidence(store, {kTwoDays, kDay1, true}, {});
  EXPECT_EQ(reading.result.authorization, HealthEvidenceAuthorization::requestCompleted);
  EXPECT_EQ(reading.failure, "export.xml line 3: unclosed token");
  for (const auto& day : reading.result.days) EXPECT_EQ(day.outcome, HealthEvidenceReadOutcome::readFailed);

  // An uncompleted permission prompt reads nothing.
  store.asked.clear();
  reading = readHealthEvidence(store, {kTwoDays, kDay1, false}, {});
  EXPECT_TRUE(store.asked.empty());
  EXPECT_EQ(reading.result.authorization, HealthEvidenceAuthorization::requestNotCompleted);
  for (const auto& day : reading.result.days) {
    EXPECT_EQ(day.outcome, HealthEvidenceReadOutcome::authorizationRequestNotCompleted);
    EXPECT_EQ(handlingOf(day.outcome), HealthEvidenceReadHandling::askPermission);
  }
}

TEST(HealthSourcePriorityTest, ListedSourcesThenWatchesThenPhonesThenByName) {
  const auto priority = HealthSourcePriority::fromList(" Pixel , ,Fitbit");
  EXPECT_EQ(priority.preferred(), (std::vector<std::string>{"Pixel", "Fitbit"}));
  std::vector<std::string> sources{"Zeynep’s iPhone", "Oura", "Fitbit", "Apple Watch", "Ali’s Apple Watch", "Pixel"};
  std::ranges::sort(sources, {}, [&](const std::string& source) { return priority.rank(source); });
  EXPECT_EQ(sources, (std::vector<std::string>{"Pixel", "Fitbit", "Ali’s Apple Watch", "Apple Watch",
                                               "Zeynep’s iPhone", "Oura"}));
}

}  // namespace
}  // namespace kovi
