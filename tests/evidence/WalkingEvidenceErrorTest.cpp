#include <gtest/gtest.h>

#include <set>
#include <string_view>

#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "tests/evidence/WalkingTestSupport.h"

namespace kovi {
namespace {

TEST(V6EvidenceErrorTable, MapsEachCodeOnceToATurkishMessageAndFallsBack) {
  // error-messages.json: codes with the message shown for them; an unknown code gets the general one.
  using Row = std::pair<std::string, std::string>;
  for (const auto& [code, message] :
       nlohmann::json::parse(testing::evidenceData("error-messages.json")).get<std::vector<Row>>()) {
    EXPECT_EQ((WalkingEvidenceError{code, "detail"}.message()), message) << code;
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
