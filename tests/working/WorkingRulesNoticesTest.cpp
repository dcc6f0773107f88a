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

// Every code the working service answers with has its own message.
TEST(WorkingErrorTableTest, KnowsEveryWorkingCode) {
  const char* codes[] = {
      "working_unavailable", "working_mac_not_ready", "working_device_unavailable",
      "working_mac_protection_missing", "working_iphone_not_ready", "working_all_devices_not_ready",
      "working_funded_deployment_required", "working_contributed_only", "working_runtime_policy_unavailable",
      "working_approvals_missing", "working_terms_changed", "working_session_conflict",
      "working_session_already_open", "working_outside_kovi", "working_start_invalid", "working_join_closed",
      "working_prepare_expired", "working_scheduled_arm_required", "working_scheduled_prepare_expired",
      "working_scheduled_prepare_invalid", "working_command_expired", "working_command_superseded",
      "working_room_unavailable", "working_visibility_closed", "working_visibility_exceeds_rules",
      "working_finalization_not_ready", "working_finalization_authorized", "working_finalization_already_authorized",
      "working_finalization_conflict", "working_finalization_evidence_invalid", "working_finalization_unavailable",
      "working_result_in_review", "working_review_unavailable", "working_reviewer_required",
      "working_review_restore_unproven", "working_review_evidence_invalid", "working_review_decision_required",
      "working_review_closed", "working_review_self_forbidden", "working_dispute_conflict", "working_dispute_limit",
      "working_dispute_unavailable", "working_dispute_evidence_forbidden", "working_already_claimed",
      "working_nothing_to_claim", "working_claim_conflict", "working_payout_precision_unavailable",
      "working_verifier_signature_invalid", "working_binding_invalid", "working_chain_binding_invalid",
      "working_temporarily_unavailable", "working_zero_lateness_unsupported",
  };
  EXPECT_EQ(kWorkingErrorTable.area, "working");
  EXPECT_EQ(kWorkingErrorTable.messages.size(), std::size(codes));
  std::set<std::string_view> tableCodes;
  for (const auto& entry : kWorkingErrorTable.messages) {
    EXPECT_TRUE(tableCodes.insert(entry.code).second) << "listed twice: " << entry.code;
    EXPECT_NE(entry.message, kNativeGenericFailureMessage) << entry.code;
  }
  for (const char* code : codes) {
    SCOPED_TRACE(code);
    EXPECT_TRUE(kWorkingErrorTable.knows(code));
  }
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_terms_changed"), std::string(kWorkingRulesChangedMessage));
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_command_superseded"),
            "Oturuma daha yeni bir istek geldi. Güncel durumu kontrol et.");
  EXPECT_EQ(kWorkingErrorTable.messageFor("working_something_new"), std::string(kNativeGenericFailureMessage));
}

}  // namespace
}  // namespace kovi
