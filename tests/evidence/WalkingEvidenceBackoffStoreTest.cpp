#include "KoviKit/evidence/WalkingEvidenceBackoffStore.h"

#include <gtest/gtest.h>

#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

constexpr UnixMillis kNow = 1'777'881'600'000;
constexpr UnixMillis kMinute = 60'000;

TEST(WalkingEvidenceBackoffStoreTest, OnlyTransientFailuresAreStoredAndTheyCountAcrossRuns) {
  const testing::TemporaryDirectory directory;
  const struct {
    WalkingEvidenceFailure failure;
    WalkingEvidenceBackoff stored;
  } steps[] = {
      {WalkingEvidenceFailure::rejected, {}},
      {WalkingEvidenceFailure::transient, {1, kNow + kMinute}},
      {WalkingEvidenceFailure::noData, {1, kNow + kMinute}},
      {WalkingEvidenceFailure::attestation, {1, kNow + kMinute}},
      {WalkingEvidenceFailure::transient, {2, kNow + 2 * kMinute}},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(enumName(step.failure));
    // A store of its own each time: what counts is on disk.
    WalkingEvidenceBackoffStore store(directory.path());
    EXPECT_EQ(store.recordFailure("actor-1", step.failure, kNow), step.stored);
    EXPECT_EQ(WalkingEvidenceBackoffStore(directory.path()).load("actor-1"), step.stored);
  }
  WalkingEvidenceBackoffStore store(directory.path());
  EXPECT_EQ(store.load("actor-2"), WalkingEvidenceBackoff{}) << "owners are kept apart";
  ASSERT_TRUE(store.clear("actor-1").has_value());
  EXPECT_EQ(store.load("actor-1"), WalkingEvidenceBackoff{});
}

}  // namespace
}  // namespace kovi
