#include "KoviKit/working/WorkingRuleShape.h"

#include <gtest/gtest.h>

#include <string>

#include "KoviKit/working/WorkingRules.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using testing::decodeEdited;
using testing::RulesEdit;
using Stage = WorkingRulesDecodeError::Stage;

struct ShapeCase {
  std::string name;
  std::string file;
  RulesEdit edit;
  std::string reason;  // empty: the document passes the shape check
};

const std::vector<ShapeCase>& shapeCases() {
  static const std::vector<ShapeCase> cases{
      {"omitted optional is missing, not null", "daily-rules.json",
       [](auto& rules) { rules["goal"].erase("totalTargetSeconds"); },
       "Unknown or missing policy field at rules.goal"},
      {"extra key at the top", "daily-rules.json", [](auto& rules) { rules["notes"] = "hi"; },
       "Unknown or missing policy field at rules"},
      {"extra key in a day window", "daily-rules.json",
       [](auto& rules) { rules["calendar"]["days"][3]["label"] = "Wed"; },
       "Unknown or missing policy field at rules.calendar.days[]"},
      {"extra key the typed decoder would ignore", "daily-rules.json",
       [](auto& rules) { rules["blocking"]["bypass"]["comment"] = "ignored?"; },
       "Unknown or missing policy field at rules.blocking.bypass"},
      {"missing key in passive", "daily-rules.json",
       [](auto& rules) { rules["verification"]["passive"].erase("readingCounts"); },
       "Unknown or missing policy field at rules.verification.passive"},
      {"pomodoro with an extra key", "scheduled-rules.json",
       [](auto& rules) { rules["session"]["pomodoro"]["longBreakSeconds"] = 900; },
       "Unknown or missing policy field at rules.session.pomodoro"},
      {"pomodoro as null is not an object", "scheduled-rules.json",
       [](auto& rules) { rules["session"]["pomodoro"] = nullptr; }, ""},
      {"object where a scalar belongs", "daily-rules.json",
       [](auto& rules) { rules["goal"]["kind"] = nlohmann::json::object(); },
       "Unknown policy object at rules.goal.kind"},
      {"object inside rank payouts", "race-rules.json",
       [](auto& rules) { rules["economics"]["rankPayoutsBps"][1] = {{"bps", 3000}}; },
       "Unknown policy object at rules.economics.rankPayoutsBps[]"},
      {"nested array of objects", "daily-rules.json",
       [](auto& rules) { rules["calendar"]["windows"] = {nlohmann::json::array({nlohmann::json::object()})}; },
       "Unknown policy object at rules.calendar.windows[][]"},
      {"document is an array", "daily-rules.json",
       [](auto& rules) { rules = nlohmann::json::array({rules}); }, "Unknown policy object at rules[]"},
      {"parent reported before child", "daily-rules.json",
       [](auto& rules) {
         rules["goal"].erase("kind");
         rules["extra"] = 1;
       },
       "Unknown or missing policy field at rules"},
      {"earlier member reported first", "daily-rules.json",
       [](auto& rules) {
         rules["economics"]["x"] = 1;
         rules["goal"]["x"] = 1;
       },
       "Unknown or missing policy field at rules.goal"},
  };
  return cases;
}

TEST(WorkingRuleShapeTest, RefusesEveryObjectOutsideItsKeySet) {
  for (const ShapeCase& shape : shapeCases()) {
    SCOPED_TRACE(shape.name);
    const auto decoded = decodeEdited(shape.file, shape.edit);
    if (shape.reason.empty()) {
      EXPECT_TRUE(decoded.has_value() || decoded.error().stage != Stage::shape) << decoded.error().reason;
    } else {
      ASSERT_FALSE(decoded.has_value());
      EXPECT_EQ(decoded.error().stage, Stage::shape);
      EXPECT_EQ(decoded.error().reason, shape.reason);
    }
  }
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
