#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"

namespace kovi {
namespace {

TEST(V6EvidenceErrorTable, MapsEachCodeOnceToATurkishMessageAndFallsBack) {
  struct Case { std::string_view code; std::string_view message; };
  for (const Case& example : {
           Case{"walking_health_sharing_disabled", "Bu hesap için Sağlık erişimini ve paylaşımı açıp tekrar dene."},
           Case{"challenge_consumed", "Cihaz doğrulaması yenilendi. İşlemi yeniden dene."},
           Case{"walking_evidence_unheard_of", "Şu anda tamamlanamadı. Yenileyip tekrar dene."},
       }) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ((WalkingEvidenceError{std::string(example.code), "detail"}.message()), example.message);
  }
  EXPECT_EQ(v6EvidenceErrorTable().area, "v6/evidence");
  std::set<std::string_view> codes;
  for (const auto& entry : v6EvidenceErrorTable().messages) EXPECT_TRUE(codes.insert(entry.code).second) << entry.code;
}


TEST(V6EvidenceSubmissionErrorTest, EveryCodeOfTheExchangeFallsInItsFailureClassAndPendingFate) {
  using F = WalkingEvidenceFailure;
  const struct { const char* code; F failure; bool drops; } cases[] = {
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
