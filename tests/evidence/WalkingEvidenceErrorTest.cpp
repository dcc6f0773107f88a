#include <gtest/gtest.h>

#include <string_view>

#include "KoviKit/evidence/WalkingEvidenceError.h"

namespace kovi {
namespace {

TEST(V6EvidenceErrorTable, MapsCodesToTurkishMessagesAndFallsBackForUnknownOnes) {
  struct Case {
    std::string_view code;
    std::string_view message;
  };
  for (const Case& example : {
           Case{"walking_health_sharing_disabled", "Bu hesap için Sağlık erişimini ve paylaşımı açıp tekrar dene."},
           Case{"challenge_consumed", "Cihaz doğrulaması yenilendi. İşlemi yeniden dene."},
           Case{"walking_evidence_unheard_of", "Şu anda tamamlanamadı. Yenileyip tekrar dene."},
       }) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ((WalkingEvidenceError{std::string(example.code), "detail"}.message()), example.message);
  }
  EXPECT_EQ(v6EvidenceErrorTable().area, "v6/evidence");
}

TEST(V6EvidenceErrorTable, HoldsEachCodeOnce) {
  const auto messages = v6EvidenceErrorTable().messages;
  for (std::size_t index = 0; index < messages.size(); ++index) {
    SCOPED_TRACE(messages[index].code);
    for (std::size_t other = index + 1; other < messages.size(); ++other) {
      EXPECT_NE(messages[index].code, messages[other].code);
    }
  }
}

}  // namespace
}  // namespace kovi
