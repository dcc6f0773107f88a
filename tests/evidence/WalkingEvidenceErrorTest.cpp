#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "tests/evidence/WalkingTestSupport.h"

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


// failure-classes.json: rows of a code of the exchange, its failure class, and whether it drops the pending record.
TEST(V6EvidenceSubmissionErrorTest, EveryCodeOfTheExchangeFallsInItsFailureClassAndPendingFate) {
  using Row = std::tuple<std::string, std::string, bool>;
  for (const auto& [code, failure, drops] :
       nlohmann::json::parse(testing::evidenceData("failure-classes.json")).get<std::vector<Row>>()) {
    SCOPED_TRACE(code);
    EXPECT_EQ(Row(code, enumName(walkingEvidenceFailure(code)), dropsPendingRecord(code)), Row(code, failure, drops));
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
