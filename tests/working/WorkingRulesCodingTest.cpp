#include <gtest/gtest.h>

#include <string>

#include "KoviKit/working/WorkingRules.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

std::string withoutFinalNewline(std::string text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

// A canonical rule document (compact, keys in declared order, unset optionals
// as null) decodes and encodes back to the same bytes.
TEST(WorkingRulesCodingTest, CanonicalDocumentsRoundTripByteForByte) {
  for (const char* file : {"daily-rules.json", "race-rules.json", "scheduled-rules.json", "first-to-target-rules.json"}) {
    SCOPED_TRACE(file);
    const std::string canonical = withoutFinalNewline(testing::workingDataFile(file));
    const auto rules = decodeWorkingRules(canonical);
    ASSERT_TRUE(rules.has_value()) << rules.error().reason;
    EXPECT_EQ(encodeWorkingRulesText(*rules), canonical);
  }
}

// Any key order and spacing decodes to the same rule set, and the encoder
// restores the declared order.
TEST(WorkingRulesCodingTest, EncodingRestoresDeclaredOrder) {
  const nlohmann::json sorted = testing::workingRulesJson("scheduled-rules.json");  // std::map: keys sorted
  const auto rules = decodeWorkingRules(sorted.dump(2));
  ASSERT_TRUE(rules.has_value()) << rules.error().reason;
  EXPECT_EQ(*rules, testing::workingRules("scheduled-rules.json"));
  EXPECT_EQ(encodeWorkingRulesText(*rules), withoutFinalNewline(testing::workingDataFile("scheduled-rules.json")));
}

TEST(WorkingRulesCodingTest, UnsetOptionalsAreWrittenAsNull) {
  const nlohmann::ordered_json encoded = encodeWorkingRules(testing::workingRules("scheduled-rules.json"));
  EXPECT_TRUE(encoded["goal"]["totalTargetSeconds"].is_null());
  EXPECT_TRUE(encoded["blocking"]["iphoneEnforcement"].is_null());
  EXPECT_TRUE(encoded["verification"]["idleThresholdSeconds"].is_null());
  EXPECT_EQ(encoded["session"]["pomodoro"]["workSeconds"], 1500);
  EXPECT_EQ(encoded["session"]["completion"], "continue");
  EXPECT_EQ(encoded["privacy"]["taskLabel"], "private");
}

TEST(WorkingRulesCodingTest, EqualityIsFieldByField) {
  const WorkingRules rules = testing::workingRules("race-rules.json");
  WorkingRules changed = rules;
  EXPECT_EQ(changed, rules);
  changed.calendar.days[13].id = "last";
  EXPECT_NE(changed, rules);
  changed = rules;
  changed.economics.rankPayoutsBps = {6000, 3000, 999, 1};
  EXPECT_NE(changed, rules);
}

// Nested in another record, rules go through the same three stages and a
// failure names the nested position.
TEST(WorkingRulesCodingTest, NestedRulesDecodeStrictly) {
  nlohmann::json room = {{"rules", testing::workingRulesJson("daily-rules.json")}};
  const JsonView view(room);
  const auto valid = view.get<WorkingRules>("rules");
  ASSERT_TRUE(valid.has_value()) << valid.error().message();
  EXPECT_EQ(*valid, testing::workingRules("daily-rules.json"));

  room["rules"]["calendar"]["timezone"] = "";
  const auto invalid = JsonView(room).get<WorkingRules>("rules");
  ASSERT_FALSE(invalid.has_value());
  EXPECT_EQ(invalid.error().message(), "rules: Invalid timezone");

  room["rules"]["goal"]["kind"] = 3;
  const auto mistyped = JsonView(room).get<WorkingRules>("rules");
  ASSERT_FALSE(mistyped.has_value());
  EXPECT_EQ(mistyped.error().message(), "rules.goal.kind: expected a string, found a number");
}

}  // namespace
}  // namespace kovi
