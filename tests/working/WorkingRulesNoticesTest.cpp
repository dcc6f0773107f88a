#include "KoviKit/working/WorkingRulesNotices.h"

#include <gtest/gtest.h>

#include <set>

#include "KoviKit/working/WorkingErrorTable.h"
#include "KoviKit/working/WorkingUnsupportedRules.h"
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

using Rules = WorkingRules;

struct UnsupportedCase { std::string name; void (*edit)(Rules&); std::vector<std::string_view> paths; };

TEST(WorkingUnsupportedRulesTest, ListsEveryRuleThisVersionCannotApply) {
  const UnsupportedCase cases[] = {
      {"everything supported", [](Rules&) {}, {}},
      {"plain late join", [](Rules& rules) { rules.session.lateJoin = Rules::Session::LateJoin::allowed; },
       {"session.lateJoin"}},
      {"explicit late join forms", [](Rules& rules) { rules.session.lateJoin = Rules::Session::LateJoin::fullTarget; },
       {}},
      {"remote work", [](Rules& rules) { rules.verification.remoteWorkAllowed = true; },
       {"verification.remoteWorkAllowed"}},
      {"no Mac", [](Rules& rules) { rules.verification.macRequired = false; }, {"verification.macRequired"}},
      {"idle threshold of a day", [](Rules& rules) { rules.verification.idleThresholdSeconds = 86'400; }, {}},
      {"idle threshold over a day", [](Rules& rules) { rules.verification.idleThresholdSeconds = 86'401; },
       {"verification.idleThresholdSeconds"}},
      {"passive idle over a day", [](Rules& rules) { rules.verification.passive.idleThresholdSeconds = 86'401; },
       {"verification.passive.idleThresholdSeconds"}},
      {"long pomodoro", [](Rules& rules) { rules.session.pomodoro = Rules::Pomodoro{86'401, 86'401}; },
       {"session.pomodoro.workSeconds", "session.pomodoro.breakSeconds"}},
      {"hard window of a week", [](Rules& rules) { rules.session.hardWindowSeconds = 604'800; }, {}},
      {"hard window over a week", [](Rules& rules) { rules.session.hardWindowSeconds = 604'801; },
       {"session.hardWindowSeconds"}},
      {"several at once, in table order",
       [](Rules& rules) {
         rules.session.hardWindowSeconds = 700'000;
         rules.verification.macRequired = false;
         rules.session.lateJoin = Rules::Session::LateJoin::allowed;
       },
       {"session.lateJoin", "verification.macRequired", "session.hardWindowSeconds"}},
  };
  for (const UnsupportedCase& unsupported : cases) {
    SCOPED_TRACE(unsupported.name);
    Rules rules = testing::workingRules("daily-rules.json");
    unsupported.edit(rules);
    std::vector<std::string_view> paths;
    for (const auto& rule : unsupportedWorkingRules(rules)) paths.push_back(rule.path);
    EXPECT_EQ(paths, unsupported.paths);
    EXPECT_EQ(workingCreationProblem(rules).has_value(), !unsupported.paths.empty());
  }
}

TEST(WorkingUnsupportedRulesTest, LabelsAreTheTurkishNames) {
  Rules rules = testing::workingRules("daily-rules.json");
  rules.verification.remoteWorkAllowed = true;
  rules.session.hardWindowSeconds = 604'801;
  const std::vector<WorkingUnsupportedRule> expected{
      {"verification.remoteWorkAllowed", "Uzak bağlantı doğrulaması"},
      {"session.hardWindowSeconds", "7 günden uzun tek oturum aralığı"}};
  EXPECT_EQ(unsupportedWorkingRules(rules), expected);
  EXPECT_EQ(workingCreationProblem(rules), std::string(kWorkingUnsupportedRulesMessage));
}

}  // namespace
}  // namespace kovi
