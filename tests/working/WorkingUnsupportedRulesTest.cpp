#include "KoviKit/working/WorkingUnsupportedRules.h"

#include <gtest/gtest.h>

#include "KoviKit/working/WorkingRulesNotices.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Rules = WorkingRules;

struct UnsupportedCase {
  std::string name;
  void (*edit)(Rules&);
  std::vector<std::string_view> paths;
};

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
