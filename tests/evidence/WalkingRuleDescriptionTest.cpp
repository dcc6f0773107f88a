#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingRuleDescription.h"
#include "KoviKit/foundation/Json.h"
#include "tests/evidence/WalkingTestSupport.h"

namespace kovi {
namespace {

// A 7-day anchored daily goal of 10000 steps with `patch` merged in (null drops a key).
WalkingKoviRules rulesWith(std::string_view patch) {
  nlohmann::json document = nlohmann::json::parse(
      R"({"mode":"goal","goalMode":"daily","durationDays":7,"stepTarget":10000,"exitPenaltyBps":0,)"
      R"("payoutRule":"equalSuccessful","rankPayoutsBps":[],"verificationWindowHours":24})");
  document.merge_patch(nlohmann::json::parse(patch));
  const auto rules = JsonView(document).as<WalkingKoviRules>();
  EXPECT_TRUE(rules.has_value()) << patch;
  return rules.value_or(WalkingKoviRules{});
}

// rule-descriptions.json: per patch of the rules the title and the lines of
// the description — all of them where "whole", else the ones that set it apart.
TEST(WalkingRuleDescription, DescribesTheRulesInTurkish) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("rule-descriptions.json"))) {
    SCOPED_TRACE(example["patch"].dump());
    const auto description = WalkingRuleDescription::describe(rulesWith(example["patch"].dump()), "tr");
    const auto lines = example["lines"].get<std::vector<std::string>>();
    const WalkingRuleDescription expected{example["title"].get<std::string>(), lines};
    EXPECT_EQ(example["whole"] ? description : (WalkingRuleDescription{description.title, lines}), expected);
    for (const std::string& line : lines) {
      EXPECT_NE(std::ranges::find(description.lines, line), description.lines.end()) << line;
    }
  }
}

TEST(WalkingRuleDescription, WritesAnOddExitPenaltyInTheChosenLocale) {
  for (const auto& [locale, basisPoints, percentage] :
       {std::tuple{"tr", 1250, "%12,5"}, std::tuple{"en", 1250, "12.5%"}, std::tuple{"de", 333, "3,33\u00A0%"}}) {
    SCOPED_TRACE(locale);
    const auto lines =
        WalkingRuleDescription::describe(rulesWith(R"({"exitPenaltyBps":)" + std::to_string(basisPoints) + "}"), locale)
            .lines;
    EXPECT_EQ(lines.back(),
              std::string("Kovi başladıktan sonra ayrılırsan katkının ") + percentage + " kadarı ödül havuzunda kalacak.");
  }
}

}  // namespace
}  // namespace kovi
