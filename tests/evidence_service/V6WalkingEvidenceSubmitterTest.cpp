#include "KoviKit/evidence/V6WalkingEvidenceSubmitter.h"

#include <gtest/gtest.h>

#include "tests/evidence_service/EvidenceFixture.h"
#include "tests/evidence_service/LoopbackEvidenceService.h"

namespace kovi {
namespace {

using testing::Device;
using testing::EvidenceFixture;
using testing::kOwner;
using Submitter = V6WalkingEvidenceSubmitter;

class V6WalkingEvidenceSubmitterTest : public ::testing::Test {
 protected:
  NativeServiceOrigin origin() const { return NativeServiceOrigin::parse(service.origin()).value(); }

  testing::LoopbackEvidenceService service{EvidenceFixture::kReference, EvidenceFixture::rules(),
                                           EvidenceFixture::kStart};
  Device device{origin()};
};

std::vector<std::string> outcomes(const Submitter::Outcome& outcome) {
  std::vector<std::string> names;
  for (const auto& day : outcome.days) {
    names.push_back(std::holds_alternative<V6WalkingSyncPlanner::Submit>(day.outcome)      ? "submit"
                    : std::holds_alternative<V6WalkingSyncPlanner::Unchanged>(day.outcome) ? "unchanged"
                    : std::holds_alternative<V6WalkingSyncPlanner::NoData>(day.outcome)    ? "noData"
                                                                                           : "failed");
  }
  return names;
}

TEST_F(V6WalkingEvidenceSubmitterTest, SignedSubmissionIsVerifiedAndAcceptedOnceThenUnchanged) {
  const auto key = device.registerKey();
  ASSERT_TRUE(key.serverDeviceKeyId.has_value());
  EXPECT_FALSE(key.pendingRegistration.has_value());

  const auto first = device.submit(key, {0, 1, 2});
  ASSERT_TRUE(first.has_value()) << first.error().code << ": " << first.error().detail;
  EXPECT_EQ(outcomes(*first), (std::vector<std::string>{"submit", "submit", "submit"}));
  ASSERT_TRUE(first->receipt.has_value());
  ASSERT_EQ(first->receipt->accepted.size(), 3u);
  for (int day = 0; day < 3; ++day) {
    SCOPED_TRACE(day);
    const auto& submit = std::get<V6WalkingSyncPlanner::Submit>(first->days[static_cast<std::size_t>(day)].outcome);
    EXPECT_EQ(service.state().day(day).revision, 1);
    // The service's own hash of the observation agrees with the device's.
    EXPECT_EQ(service.state().day(day).payloadHash, submit.payloadHash);
  }
  EXPECT_EQ(service.state().writerDeviceKeyId, key.serverDeviceKeyId);
  EXPECT_TRUE(device.pending.pending(kOwner).records.empty());

  const auto again = device.submit(key, {0, 1, 2});
  ASSERT_TRUE(again.has_value());
  EXPECT_EQ(outcomes(*again), (std::vector<std::string>{"unchanged", "unchanged", "unchanged"}));
  EXPECT_FALSE(again->receipt.has_value());
  EXPECT_EQ(service.state().acceptedSubmissions, 1);
}

TEST_F(V6WalkingEvidenceSubmitterTest, ALostReceiptIsResentWithTheSameRequestIdAndMakesNoSecondRevision) {
  const auto key = device.registerKey();
  service.loseNextAnswer();
  const auto lost = device.submit(key, {0, 1});
  ASSERT_FALSE(lost.has_value());
  EXPECT_EQ(lost.error().failure, WalkingEvidenceFailure::transient);
  ASSERT_EQ(device.pending.pending(kOwner).records.size(), 1u);

  const auto resent = device.submit(key, {0, 1});
  ASSERT_TRUE(resent.has_value()) << resent.error().code;
  ASSERT_EQ(resent->resolved.size(), 1u);
  ASSERT_TRUE(resent->resolved[0].receipt.has_value());
  // The day plan after the resend finds the service holding exactly this data.
  EXPECT_EQ(outcomes(*resent), (std::vector<std::string>{"unchanged", "unchanged", "noData"}));
  const auto state = service.state();
  ASSERT_EQ(state.submittedRequestIds.size(), 2u);
  EXPECT_EQ(std::tuple(state.submittedRequestIds[1], state.day(0).revision, state.acceptedSubmissions),
            std::tuple(state.submittedRequestIds[0], 1, 1));
  EXPECT_TRUE(device.pending.pending(kOwner).records.empty());
}

TEST_F(V6WalkingEvidenceSubmitterTest, TheWriterMovesFromThisDevicesReplacedKeyBeforeSigning) {
  const auto first = device.registerKey();
  ASSERT_TRUE(device.submit(first, {0}).has_value());
  EXPECT_EQ(service.state().writerEpoch, 1);

  const auto second = device.registerKey();
  EXPECT_EQ(second.replacedServerDeviceKeyIds, std::vector<std::string>{*first.serverDeviceKeyId});
  const auto outcome = device.submit(second, {0, 1});
  ASSERT_TRUE(outcome.has_value()) << outcome.error().code << ": " << outcome.error().detail;
  ASSERT_TRUE(outcome->transfer && outcome->receipt);
  EXPECT_EQ(std::tuple(outcome->transfer->writerEpoch, outcome->receipt->writerEpoch, outcome->receipt->deviceKeyId,
                       service.state().writerDeviceKeyId),
            std::tuple(2, 2, *second.serverDeviceKeyId, second.serverDeviceKeyId));
}

TEST_F(V6WalkingEvidenceSubmitterTest, AnotherDevicesWriterIsLeftAloneAndNothingIsSent) {
  ASSERT_TRUE(device.submit(device.registerKey(), {0}).has_value());
  Device other(origin());
  const auto refused = other.submit(other.registerKey(), {0, 1});
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().code, "walking_evidence_writer_device_mismatch");
  EXPECT_EQ(service.state().submittedRequestIds.size(), 1u);
}

TEST_F(V6WalkingEvidenceSubmitterTest, RefusalsThatEndAPendingSubmissionDropItAndTheNextRunRebuilds) {
  const auto key = device.registerKey();
  const struct {
    const char* code;
    void (*arrange)(testing::LoopbackEvidenceService&);
    const char* message;
  } cases[] = {
      {"walking_evidence_revision_conflict", [](auto& s) { s.bumpRevisionBeforeNextSubmission(0); },
       "Günün ölçümü başka bir paylaşımla güncellendi. Sağlık verisi yeniden okunup tekrar denenecek."},
      {"walking_evidence_payload_too_large", [](auto& s) { s.limitPayloadBytes(200); },
       "Bekleyen Sağlık paylaşımı artık kabul edilemiyor. Sağlık verisi yeniden okunup yeni bir paylaşım "
       "hazırlanacak."},
  };
  double steps = 100;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    c.arrange(service);
    steps += 100;  // new data each round, so there is always something to send
    const auto refused = device.submit(key, {0, 1}, steps);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(std::tuple(refused.error().code, refused.error().failure, refused.error().message),
              std::tuple(c.code, WalkingEvidenceFailure::rejected, c.message));
    EXPECT_TRUE(device.pending.pending(kOwner).records.empty());
    service.limitPayloadBytes(1 << 20);

    const auto rebuilt = device.submit(key, {0, 1}, steps);
    ASSERT_TRUE(rebuilt.has_value()) << rebuilt.error().code;
    ASSERT_TRUE(rebuilt->receipt.has_value());
  }
  // Day 0: accepted twice and moved once behind the device's back.
  EXPECT_EQ(service.state().day(0).revision, 3);
}

}  // namespace
}  // namespace kovi
