#include <gtest/gtest.h>

#include <set>
#include <string_view>

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

}  // namespace
}  // namespace kovi
