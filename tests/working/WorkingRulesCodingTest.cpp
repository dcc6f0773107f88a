#include <gtest/gtest.h>

#include <map>
#include <string>

#include "KoviKit/working/WorkingRuleShape.h"
#include "KoviKit/working/WorkingRules.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

// A canonical rule document (compact, keys in declared order, unset optionals
// as null) decodes and encodes back to the same bytes; any key order and
// spacing decodes to the same rule set.
TEST(WorkingRulesCodingTest, CanonicalDocumentsRoundTripByteForByte) {
  for (const char* file : {"daily-rules.json", "race-rules.json", "scheduled-rules.json", "first-to-target-rules.json"}) {
    SCOPED_TRACE(file);
    const std::string canonical = testing::workingDataFile(file);
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

using Stage = WorkingRulesDecodeError::Stage;

// A rule document passes three stages in order: syntax, the shape check (no
// object outside its key set), typed decoding; each failure names its stage
// and, where it has one, the key path. Each row of rules-shape.json patches
// one canonical rule set.
TEST(WorkingRuleShapeTest, EachStageRefusesWithItsPath) {
  const std::map<std::string, Stage> stages{{"shape", Stage::shape}, {"decoding", Stage::decoding}};
  const auto rows = nlohmann::json::parse(testing::workingDataFile("rules-shape.json"));
  ASSERT_EQ(rows.size(), 17U);
  for (const auto& row : rows) {
    const std::string reason = row.at("reason");
    SCOPED_TRACE(row.at("patch").dump());
    const auto decoded = testing::decodeEdited(row.at("file").get<std::string>(),
                                               [&](nlohmann::json& rules) { rules = rules.patch(row.at("patch")); });
    if (reason.empty()) {
      EXPECT_TRUE(decoded.has_value()) << decoded.error().reason;
      continue;
    }
    ASSERT_FALSE(decoded.has_value());
    EXPECT_EQ(decoded.error().stage, stages.at(row.at("stage")));
    EXPECT_EQ(decoded.error().reason, reason);
  }
  const auto wrapped = testing::decodeEdited("daily-rules.json", [](auto& r) { r = nlohmann::json::array({r}); });
  ASSERT_FALSE(wrapped.has_value());
  EXPECT_EQ(wrapped.error().stage, Stage::shape);
  EXPECT_EQ(wrapped.error().reason, "Unknown policy object at rules[]");
  const auto broken = decodeWorkingRules(std::string_view("{\"version\": 2,"));
  ASSERT_FALSE(broken.has_value());
  EXPECT_EQ(broken.error().stage, Stage::syntax);
}

// A document built in memory never passed the parser's depth limit; the walk
// itself must survive any nesting.
TEST(WorkingRuleShapeTest, WalksDeepNestingWithoutRecursion) {
  constexpr int kDepth = 35'000;
  nlohmann::json nested = nlohmann::json::object();
  for (int level = 0; level < kDepth; ++level) nested = nlohmann::json::array({std::move(nested)});
  nlohmann::json rules = testing::workingRulesJson("daily-rules.json");
  rules["calendar"]["windows"] = std::move(nested);
  const auto checked = WorkingRuleShape::check(rules);
  ASSERT_FALSE(checked.has_value());
  std::string expectedPath = "rules.calendar.windows";
  for (int level = 0; level < kDepth; ++level) expectedPath += "[]";
  EXPECT_EQ(checked.error(), "Unknown policy object at " + expectedPath);
}

}  // namespace
}  // namespace kovi
