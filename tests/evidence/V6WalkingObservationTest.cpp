#include <gtest/gtest.h>

#include <string>

#include "KoviKit/evidence/V6WalkingBucketEntry.h"
#include "KoviKit/evidence/V6WalkingContext.h"
#include "KoviKit/evidence/V6WalkingObservation.h"
#include "KoviKit/evidence/V6WalkingReceipt.h"
#include "WalkingTestSupport.h"
#include "tests/support/Refusal.h"

namespace kovi {
namespace {

using testing::bucketAt;
using testing::kBucket;
using testing::kMinute;

constexpr HealthEvidenceDayWindow kWindow{2, 1777894620000, 1777894620000 + 96 * kBucket};

WalkingEvidenceBuckets::SanitizedDay dayReadAt(UnixMillis cutoff) {
  const std::vector<HealthEvidenceBucket> buckets{bucketAt(kWindow.start, 0, 1200.7), bucketAt(kWindow.start, 1, 0),
                                                  bucketAt(kWindow.start, 2, 33)};
  return WalkingEvidenceBuckets::sanitize(kWindow, HealthEvidenceReadOutcome::measured, buckets, cutoff).value();
}

// A cutoff on a grid line closes the bucket ending there; once the day is over the cutoff is the day's end.
TEST(V6WalkingObservation, CarriesClosedBucketsAsWholeStepStrings) {
  for (const auto& [cutoff, expected] : {std::pair{kWindow.start + 3 * kBucket, kWindow.start + 3 * kBucket},
                                         std::pair{kWindow.end + 5 * kMinute, kWindow.end}}) {
    const auto observation = V6WalkingObservation::fromDay(dayReadAt(cutoff), cutoff);
    ASSERT_TRUE(observation.has_value());
    EXPECT_EQ(observation->measurementCutoff, expected);
    EXPECT_EQ(observation->buckets.size(), 3u);
    EXPECT_EQ(observation->buckets[0], (V6WalkingBucket{kWindow.start, kWindow.start + kBucket, "1200"}));
  }
}

// Rounding bucket by bucket would send 5000 + 4999 + 0 + 0 = 9999 of these
// 10001.3 steps; the running total sends every whole step.
TEST(V6WalkingObservation, WholeStepsFollowTheRunningTotal) {
  const std::vector<HealthEvidenceBucket> buckets{bucketAt(kWindow.start, 0, 5000.5), bucketAt(kWindow.start, 1, 4999.5),
                                                  bucketAt(kWindow.start, 2, 0.7), bucketAt(kWindow.start, 3, 0.6)};
  const UnixMillis cutoff = kWindow.start + 4 * kBucket;
  const auto day = WalkingEvidenceBuckets::sanitize(kWindow, HealthEvidenceReadOutcome::measured, buckets, cutoff);
  ASSERT_TRUE(day.has_value());
  EXPECT_DOUBLE_EQ(day->closedTotal, 10001.3);
  const auto observation = V6WalkingObservation::fromDay(*day, cutoff);
  ASSERT_TRUE(observation.has_value());
  std::vector<std::string> steps;
  for (const V6WalkingBucket& bucket : observation->buckets) steps.push_back(bucket.steps);
  EXPECT_EQ(steps, (std::vector<std::string>{"5000", "5000", "0", "1"}));
}

TEST(V6WalkingObservation, PayloadNamesTheCutoffClosedThroughAndTheWireFormMeasurementCutoff) {
  const UnixMillis cutoff = kWindow.start + 2 * kBucket + 1;
  const auto observation = V6WalkingObservation::fromDay(dayReadAt(cutoff), cutoff).value();
  const std::string buckets =
      R"("buckets":[{"start":1777894620000,"end":1777895520000,"steps":"1200"},)"
      R"({"start":1777895520000,"end":1777896420000,"steps":"0"}]})";
  const std::string head = R"({"sourcePolicy":"walking-health-buckets-v1","windowStart":1777894620000,)"
                           R"("windowEnd":1777981020000,)";
  EXPECT_EQ(observation.payloadText(), head + R"("closedThrough":1777896420000,)" + buckets);
  const V6WalkingBucketEntry entry{2, 5, observation};
  EXPECT_EQ(entry.json(),
            R"({"day":2,"expectedRevision":5,"observation":)" + head + R"("measurementCutoff":1777896420000,)" + buckets +
                "}");
  // The wire form decodes back to the same observation.
  EXPECT_EQ(decodeJsonText<V6WalkingObservation>(nlohmann::json::parse(entry.json())["observation"].dump()),
            observation);
}

// wire-records.json: step texts of a bucket with whether they are accepted, and
// receipts refused with the error naming the key path.
const nlohmann::json kWire = nlohmann::json::parse(testing::evidenceData("wire-records.json"));

TEST(V6WalkingObservation, StepsOnTheWireAreWholeNonNegativeDecimals) {
  for (const auto& [steps, accepted] : kWire["bucketSteps"].get<std::vector<std::pair<std::string, bool>>>()) {
    const std::string text = R"({"start":0,"end":900000,"steps":)" + steps + "}";
    EXPECT_EQ(decodeJsonText<V6WalkingBucket>(text).has_value(), accepted) << text;
  }
}

TEST(V6WalkingContext, DecodesTheServersRecordAndIgnoresNewKeys) {
  const auto context = decodeJsonText<V6WalkingContext>(testing::evidenceData("walking-context.json"));
  ASSERT_TRUE(context.has_value()) << context.error().message();
  EXPECT_EQ(context->windows.size(), 2u);
  ASSERT_NE(context->revisionOf(0), nullptr);
  EXPECT_EQ(context->revisionOf(0)->acceptedAt, 1500);
  EXPECT_EQ(context->revisionOf(0)->summary["mood"], "ok");
  EXPECT_EQ(context->revisionOf(2), nullptr);
  EXPECT_EQ(context->rules.stepTarget, 20000);
}

TEST(V6WalkingReceipt, RefusesABrokenReceiptWithTheKeyPath) {
  for (const auto& [text, error] : kWire["refusedReceipts"].get<std::vector<std::pair<std::string, std::string>>>()) {
    EXPECT_EQ(testing::refusalOf(decodeJsonText<V6WalkingReceipt>(text)), error) << text;
  }
}

}  // namespace
}  // namespace kovi
