#include <gtest/gtest.h>

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

using testing::decodeEdited;
using testing::RulesEdit;
using testing::setting;
using Stage = WorkingRulesDecodeError::Stage;

using nlohmann::json;

// A rule document passes three stages in order: syntax, the shape check (no
// object outside its key set), typed decoding; each failure names its stage
// and, where it has one, the key path.
TEST(WorkingRuleShapeTest, EachStageRefusesWithItsPath) {
  const std::string daily = "daily-rules.json";
  const struct {
    std::string file;
    RulesEdit edit;
    Stage stage;
    std::string reason;  // empty: the document decodes
  } cases[] = {
      // An omitted optional is missing, not null.
      {daily, [](auto& r) { r["goal"].erase("totalTargetSeconds"); }, Stage::shape,
       "Unknown or missing policy field at rules.goal"},
      {daily, [](auto& r) { r["notes"] = "hi"; }, Stage::shape, "Unknown or missing policy field at rules"},
      {daily, [](auto& r) { r["calendar"]["days"][3]["label"] = "Wed"; }, Stage::shape,
       "Unknown or missing policy field at rules.calendar.days[]"},
      // A key the typed decoder would ignore.
      {daily, [](auto& r) { r["blocking"]["bypass"]["comment"] = "ignored?"; }, Stage::shape,
       "Unknown or missing policy field at rules.blocking.bypass"},
      {daily, [](auto& r) { r["verification"]["passive"].erase("readingCounts"); }, Stage::shape,
       "Unknown or missing policy field at rules.verification.passive"},
      {"scheduled-rules.json", [](auto& r) { r["session"]["pomodoro"]["longBreakSeconds"] = 900; }, Stage::shape,
       "Unknown or missing policy field at rules.session.pomodoro"},
      {daily, [](auto& r) { r["goal"]["kind"] = json::object(); }, Stage::shape,
       "Unknown policy object at rules.goal.kind"},
      {"race-rules.json", [](auto& r) { r["economics"]["rankPayoutsBps"][1] = {{"bps", 3000}}; }, Stage::shape,
       "Unknown policy object at rules.economics.rankPayoutsBps[]"},
      {daily, [](auto& r) { r["calendar"]["windows"] = {json::array({json::object()})}; }, Stage::shape,
       "Unknown policy object at rules.calendar.windows[][]"},
      {daily, [](auto& r) { r = json::array({r}); }, Stage::shape, "Unknown policy object at rules[]"},
      // The parent is reported before the child, the earlier member first.
      {daily, [](auto& r) { r["goal"].erase("kind"), r["extra"] = 1; }, Stage::shape,
       "Unknown or missing policy field at rules"},
      {daily, [](auto& r) { r["economics"]["x"] = 1, r["goal"]["x"] = 1; }, Stage::shape,
       "Unknown or missing policy field at rules.goal"},
      // No pomodoro at all is a rule set like any other.
      {"scheduled-rules.json", [](auto& r) { r["session"]["pomodoro"] = nullptr; }, {}, ""},
      {daily, setting({{"/goal/kind", "weekly"}}), Stage::decoding, "rules.goal.kind: unknown value \"weekly\""},
      {daily, setting({{"/version", "2"}}), Stage::decoding, "rules.version: expected an integer, found a string"},
      {daily, setting({{"/economics/contributionAtomic", 25}}), Stage::decoding,
       "rules.economics.contributionAtomic: expected a string, found a number"},
      {daily, setting({{"/calendar/days/2/start", 1.5}}), Stage::decoding,
       "rules.calendar.days[2].start: expected an integer, found a number"},
      {daily, setting({{"/session/pomodoro", 7}}), Stage::decoding,
       "rules.session.pomodoro: expected an object, found a number"},
  };
  for (const auto& refused : cases) {
    SCOPED_TRACE(refused.reason);
    const auto decoded = decodeEdited(refused.file, refused.edit);
    if (refused.reason.empty()) {
      EXPECT_TRUE(decoded.has_value()) << decoded.error().reason;
      continue;
    }
    ASSERT_FALSE(decoded.has_value());
    EXPECT_EQ(decoded.error().stage, refused.stage);
    EXPECT_EQ(decoded.error().reason, refused.reason);
  }
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
