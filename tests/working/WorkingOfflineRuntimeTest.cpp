#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/working/WorkingOfflineProof.h"
#include "KoviKit/working/WorkingOfflineRuntime.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Kind = WorkingOfflineError::Kind;

constexpr UnixMillis kThrough = 1'800'000'000'000;
constexpr std::int64_t kMonotonic = 5'000'000;
const std::string kBoot = "6f1c3a52-0b6e-4c39-9a0a-1d7e2b9f4c11";

WorkingOfflineLease lease(UnixMillis workUntil = kThrough + 300'000, std::int64_t maxSequence = 20) {
  WorkingOfflineLease value;
  value.id = "lease-1";
  value.sessionID = "session-1";
  value.deviceID = "mac-1";
  value.epoch = 3;
  value.rulesHash = "rules-hash";
  value.issuedAt = kThrough;
  value.workUntil = workUntil;
  value.reconcileBy = workUntil + 600'000;
  value.maxSequence = maxSequence;
  value.anchor = {7, "head-hash", kThrough, kMonotonic - 2'000};
  return value;
}

// Installed two seconds after the anchor's time, on a clock that agrees.
WorkingOfflineRuntime installed(const WorkingOfflineLease& value = lease()) {
  return WorkingOfflineRuntime::install(value, {kThrough + 2'000, kMonotonic}, kBoot);
}

// A reading `elapsed` after installation on both clocks, the wall clock
// off by `skew`.
WorkingClockReading after(std::int64_t elapsed, std::int64_t skew = 0) {
  return {kThrough + 2'000 + elapsed + skew, kMonotonic + elapsed};
}

struct ClockCase {
  const char* name;
  WorkingClockReading reading;
  std::string boot;
  std::optional<std::string> discontinuity;
};

class OfflineClockTest : public ::testing::TestWithParam<ClockCase> {};

TEST_P(OfflineClockTest, NoticesRebootsAndClockJumps) {
  WorkingOfflineRuntime runtime = installed();
  ASSERT_TRUE(runtime.observe(after(10'000), kBoot).has_value());
  const WorkingOfflineRuntime before = runtime;
  const auto outcome = runtime.observe(GetParam().reading, GetParam().boot);
  if (GetParam().discontinuity) {
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error(), (WorkingOfflineError{Kind::clockDiscontinuity, *GetParam().discontinuity}));
    EXPECT_EQ(runtime, before);
  } else {
    ASSERT_TRUE(outcome.has_value()) << outcome.error().detail;
    EXPECT_EQ(runtime.lastWall, GetParam().reading.wall);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Readings, OfflineClockTest,
    ::testing::Values(ClockCase{"steady", after(20'000), kBoot, std::nullopt},
                      ClockCase{"reboot", after(20'000), "1b2c3d4e-0000-4000-8000-000000000000", "bootID"},
                      ClockCase{"monotonicBack", after(9'999), kBoot, "monotonic"},
                      ClockCase{"wallAheadAtTolerance", after(20'000, 2'000), kBoot, std::nullopt},
                      ClockCase{"wallAheadPastTolerance", after(20'000, 2'001), kBoot, "wall"},
                      ClockCase{"wallBehindPastTolerance", after(20'000, -2'001), kBoot, "wall"},
                      // Someone set the clock ten minutes ahead.
                      ClockCase{"wallJump", after(20'000, 600'000), kBoot, "wall"},
                      ClockCase{"extremeWall", {INT64_MIN, kMonotonic + 20'000}, kBoot, "wall"}),
    [](const auto& info) { return std::string(info.param.name); });

struct CountCase {
  const char* name;
  UnixMillis workUntil;
  std::int64_t maxSequence;
  std::int64_t elapsed;
  std::optional<WorkingOfflineError> refusal;
};

class OfflineCountingTest : public ::testing::TestWithParam<CountCase> {};

TEST_P(OfflineCountingTest, StopsAtWorkUntilTheOfflineLimitAndMaxSequence) {
  WorkingOfflineRuntime runtime = installed(lease(GetParam().workUntil, GetParam().maxSequence));
  const auto outcome = runtime.mayCount(after(GetParam().elapsed), kBoot);
  if (GetParam().refusal) {
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error(), *GetParam().refusal);
  } else {
    EXPECT_TRUE(outcome.has_value()) << outcome.error().detail;
  }
}

// Installed 2 s after the anchor, so the 90-second limit is 88 s after installation.
INSTANTIATE_TEST_SUITE_P(
    Bounds, OfflineCountingTest,
    ::testing::Values(
        CountCase{"beforeLimit", kThrough + 300'000, 20, 87'999, std::nullopt},
        CountCase{"atLimit", kThrough + 300'000, 20, 88'000, WorkingOfflineError{Kind::expired, "offlineLimit"}},
        CountCase{"beforeWorkUntil", kThrough + 30'000, 20, 27'999, std::nullopt},
        CountCase{"atWorkUntil", kThrough + 30'000, 20, 28'000, WorkingOfflineError{Kind::expired, "workUntil"}},
        CountCase{"sequencesUsedUp", kThrough + 300'000, 7, 1'000, WorkingOfflineError{Kind::unavailable, "maxSequence"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OfflineRuntimeTest, WithoutALeaseNothingCounts) {
  WorkingOfflineRuntime runtime;
  EXPECT_EQ(runtime.mayCount(after(0), kBoot).error().kind, Kind::unavailable);
  EXPECT_EQ(runtime.countingEnd().error().kind, Kind::unavailable);
}

WorkingCheckpoint continuing(const WorkingOfflineAnchor& head, std::int64_t elapsed) {
  const UnixMillis at = kThrough + 2'000 + elapsed;
  return {"session-1", "mac-1", 3, head.sequence + 1, head.headHash, at, kMonotonic + elapsed,
          {{head.through, at, WorkingTimeSegment::Kind::active}}, false};
}

TEST(OfflineRuntimeTest, OfflineCheckpointsContinueTheChainFromTheLeasesAnchor) {
  WorkingOfflineRuntime runtime = installed();
  const WorkingCheckpoint first = continuing(runtime.head(), 30'000);
  ASSERT_TRUE(runtime.admitCheckpoint(first, after(30'000), kBoot).has_value());
  EXPECT_EQ(runtime.head().sequence, 8);
  EXPECT_EQ(runtime.head().headHash, workingCheckpointHash(first));

  // The next one must name the first one's hash, not the lease's anchor.
  WorkingCheckpoint second = continuing(runtime.head(), 60'000);
  second.previousHash = "head-hash";
  EXPECT_EQ(runtime.admitCheckpoint(second, after(60'000), kBoot).error(),
            (WorkingOfflineError{Kind::checkpointChain, "previousHash"}));
  second.previousHash = workingCheckpointHash(first);
  EXPECT_TRUE(runtime.admitCheckpoint(second, after(60'000), kBoot).has_value());
}

struct CheckpointCase {
  const char* name;
  void (*change)(WorkingCheckpoint&);
  WorkingOfflineError refusal;
};

class OfflineCheckpointRefusalTest : public ::testing::TestWithParam<CheckpointCase> {};

TEST_P(OfflineCheckpointRefusalTest, RefusesAndKeepsTheHead) {
  WorkingOfflineRuntime runtime = installed();
  WorkingCheckpoint checkpoint = continuing(runtime.head(), 30'000);
  GetParam().change(checkpoint);
  const WorkingOfflineRuntime before = runtime;
  EXPECT_EQ(runtime.admitCheckpoint(checkpoint, after(30'000), kBoot).error(), GetParam().refusal);
  EXPECT_EQ(runtime, before);
}

INSTANTIATE_TEST_SUITE_P(
    Checkpoints, OfflineCheckpointRefusalTest,
    ::testing::Values(
        CheckpointCase{"gap", [](auto& c) { c.sequence += 1; }, {Kind::checkpointChain, "sequence"}},
        CheckpointCase{"repeat", [](auto& c) { c.sequence -= 1; }, {Kind::checkpointChain, "sequence"}},
        CheckpointCase{"otherHead", [](auto& c) { c.previousHash = "x"; }, {Kind::checkpointChain, "previousHash"}},
        CheckpointCase{"otherSession", [](auto& c) { c.sessionID = "s2"; }, {Kind::checkpointChain, "sessionID"}},
        CheckpointCase{"otherEpoch", [](auto& c) { c.epoch = 4; }, {Kind::checkpointChain, "epoch"}},
        CheckpointCase{"beforeAnchor", [](auto& c) { c.at = kThrough - 1; }, {Kind::checkpointChain, "at"}},
        CheckpointCase{"pastLimit", [](auto& c) { c.at = kThrough + 90'001; }, {Kind::expired, "at"}},
        CheckpointCase{"segmentPastLimit", [](auto& c) { c.segments.back().end = kThrough + 90'001; },
                       {Kind::expired, "segments"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(OfflineRuntimeTest, ACheckpointAfterARebootIsRefused) {
  WorkingOfflineRuntime runtime = installed();
  const auto outcome = runtime.admitCheckpoint(continuing(runtime.head(), 30'000), after(30'000), "another-boot");
  EXPECT_EQ(outcome.error(), (WorkingOfflineError{Kind::clockDiscontinuity, "bootID"}));
}

TEST(OfflineProofTest, IsSignedByTheDeviceKeyOverTheProofPurpose) {
  testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "app.kovi.test");
  const auto keyID = keys.generateKey();
  ASSERT_TRUE(keyID.has_value());

  WorkingOfflineRuntime runtime = installed();
  const WorkingCheckpoint checkpoint = continuing(runtime.head(), 30'000);
  ASSERT_TRUE(runtime.admitCheckpoint(checkpoint, after(30'000), kBoot).has_value());
  const auto proof = makeWorkingOfflineProof(runtime, {true, true, false, true});
  ASSERT_TRUE(proof.has_value());
  EXPECT_EQ(proof->sequence, 8);
  EXPECT_EQ(proof->checkpointHash, workingCheckpointHash(checkpoint));
  EXPECT_EQ(proof->leaseID, "lease-1");

  const auto signature = signWorkingOfflineProof(keys, *keyID, *proof);
  ASSERT_TRUE(signature.has_value());
  // The compact form: 36 bytes of authenticator data, then the DER signature.
  const auto bytes = base64Decode(*signature).value();
  ASSERT_GT(bytes.size(), 36u);
  const AppAttestAssertion assertion{{bytes.begin(), bytes.begin() + 36}, {bytes.begin() + 36, bytes.end()}};
  const std::string text = R"({"purpose":"kovi-working-offline-proof-v1","proof":)" + encodeRecord(*proof).dump() + "}";
  const auto publicKey = keys.publicKey(*keyID).value();
  EXPECT_TRUE(verifyAssertion(publicKey, "app.kovi.test", sha256(text), assertion).has_value());

  WorkingOfflineProof other = *proof;
  other.sequence = 9;
  const std::string otherText =
      R"({"purpose":"kovi-working-offline-proof-v1","proof":)" + encodeRecord(other).dump() + "}";
  EXPECT_FALSE(verifyAssertion(publicKey, "app.kovi.test", sha256(otherText), assertion).has_value());
}

}  // namespace
}  // namespace kovi
