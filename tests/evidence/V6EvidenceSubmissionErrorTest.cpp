#include "KoviKit/evidence/V6EvidenceSubmissionError.h"

#include <gtest/gtest.h>

namespace kovi {
namespace {

TEST(V6EvidenceSubmissionErrorTest, EveryCodeOfTheExchangeFallsInItsFailureClassAndPendingFate) {
  using F = WalkingEvidenceFailure;
  const struct {
    const char* code;
    F failure;
    bool drops;
  } cases[] = {
      {"attestation_unsupported", F::attestationUnsupported, false},
      {"challenge_expired", F::attestation, false},
      {"challenge_consumed", F::attestation, true},
      {"device_key_not_registered", F::attestation, true},
      {"assertion_counter_replay", F::attestation, true},
      {"attestation_key_unknown", F::attestation, true},
      {"walking_evidence_writer_epoch_stale", F::rejected, false},
      {"walking_evidence_writer_device_mismatch", F::rejected, false},
      {"walking_evidence_request_conflict", F::rejected, true},
      {"walking_evidence_payload_too_large", F::rejected, true},
      {"walking_evidence_revision_conflict", F::rejected, true},
      {"walking_no_closed_bucket", F::noData, false},
      {"walking_no_readable_data", F::noData, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_EQ(walkingEvidenceFailure(c.code), c.failure);
    EXPECT_EQ(dropsPendingRecord(c.code), c.drops);
  }
}

TEST(V6EvidenceSubmissionErrorTest, TransportFailuresAreTransientAndWordedForTheUser) {
  const auto unavailable = V6EvidenceSubmissionError::fromService(NativeAccountError::unavailable());
  EXPECT_EQ(unavailable.failure, WalkingEvidenceFailure::transient);
  EXPECT_EQ(unavailable.code, "unavailable");
  EXPECT_EQ(V6EvidenceSubmissionError::fromService(NativeAccountError::rateLimited(30)).failure,
            WalkingEvidenceFailure::transient);

  const auto conflict =
      V6EvidenceSubmissionError::fromService(NativeAccountError::service("walking_evidence_revision_conflict"));
  EXPECT_EQ(conflict.failure, WalkingEvidenceFailure::rejected);
  EXPECT_EQ(conflict.message,
            "Günün ölçümü başka bir paylaşımla güncellendi. Sağlık verisi yeniden okunup tekrar denenecek.");
}

}  // namespace
}  // namespace kovi
