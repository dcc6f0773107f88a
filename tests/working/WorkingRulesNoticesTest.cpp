#include "KoviKit/working/WorkingRulesNotices.h"

#include <gtest/gtest.h>

#include <set>

#include "KoviKit/working/WorkingErrorTable.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

TEST(WorkingRulesNoticesTest, ReceivedRulesThatFailAnyStageAreNeverApplied) {
  const std::string valid = testing::workingDataFile("daily-rules.json");
  nlohmann::json omitted = testing::workingRulesJson("daily-rules.json");
  omitted["goal"].erase("totalTargetSeconds");
  nlohmann::json invalid = testing::workingRulesJson("daily-rules.json");
  invalid["economics"]["contributionAtomic"] = "00";
  const std::string unverifiable(kWorkingRulesUnverifiableMessage);

  EXPECT_TRUE(receivedWorkingRules(valid).has_value());
  for (const std::string& broken : {std::string("{"), omitted.dump(), invalid.dump(), std::string("[]")}) {
    SCOPED_TRACE(broken.substr(0, 40));
    const auto received = receivedWorkingRules(broken);
    ASSERT_FALSE(received.has_value());
    EXPECT_EQ(received.error(), unverifiable);
  }
}

TEST(WorkingRulesNoticesTest, ConsentCoversOnlyTheSameRuleSet) {
  const WorkingRules current = testing::workingRules("daily-rules.json");
  WorkingRules older = current;
  older.goal.dailyTargetSeconds = 7200;
  const std::string changed(kWorkingRulesChangedMessage);
  const std::string reviewAgain(kWorkingRulesReviewAtCreationMessage);

  EXPECT_EQ(workingConsentProblem(current, current, WorkingConsentContext::joining), std::nullopt);
  EXPECT_EQ(workingConsentProblem(older, current, WorkingConsentContext::joining), changed);
  EXPECT_EQ(workingConsentProblem(std::nullopt, current, WorkingConsentContext::joining), changed);
  EXPECT_EQ(workingConsentProblem(older, current, WorkingConsentContext::creating), reviewAgain);
}

// Codes are unique and each has its own message; unknown codes fall back.
TEST(WorkingErrorTableTest, KnowsTheWorkingCodesAndFallsBack) {
  EXPECT_EQ(kWorkingErrorTable.area, "working");
  std::set<std::string_view> tableCodes;
  for (const auto& entry : kWorkingErrorTable.messages) {
    EXPECT_TRUE(tableCodes.insert(entry.code).second) << "listed twice: " << entry.code;
    EXPECT_NE(entry.message, kNativeGenericFailureMessage) << entry.code;
  }
  for (const char* code : {"working_unavailable", "working_review_self_forbidden", "working_zero_lateness_unsupported"}) {
    EXPECT_TRUE(kWorkingErrorTable.knows(code)) << code;
  }
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_terms_changed"), std::string(kWorkingRulesChangedMessage));
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_command_superseded"),
            "Oturuma daha yeni bir istek geldi. Güncel durumu kontrol et.");
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_something_new"), std::string(kNativeGenericFailureMessage));
}

}  // namespace
}  // namespace kovi
