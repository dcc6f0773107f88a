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
// as null) decodes and encodes back to the same bytes; any key order and
// spacing decodes to the same rule set.
TEST(WorkingRulesCodingTest, CanonicalDocumentsRoundTripByteForByte) {
  for (const char* file : {"daily-rules.json", "race-rules.json", "scheduled-rules.json", "first-to-target-rules.json"}) {
    SCOPED_TRACE(file);
    const std::string canonical = withoutFinalNewline(testing::workingDataFile(file));
    const auto rules = decodeWorkingRules(canonical);
    ASSERT_TRUE(rules.has_value()) << rules.error().reason;
    EXPECT_EQ(encodeWorkingRulesText(*rules), canonical);
    const nlohmann::json sorted = nlohmann::json::parse(canonical);  // std::map: keys sorted
    EXPECT_EQ(decodeWorkingRules(sorted.dump(2)), rules);
  }
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
