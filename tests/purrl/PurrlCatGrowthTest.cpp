#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlCatGrowthMoment.h"
#include "KoviKit/purrl/PurrlCatGrowthRules.h"

namespace kovi {
namespace {

constexpr std::string_view kGrowth = R"({
  "level": 1, "stage": "young", "daysTogether": 12,
  "next": {"level": 2, "stage": "grown", "days": 30, "needsKeptKovi": true},
  "tricks": [{"id": "wave", "learned": true, "learnedAt": 795000000.5, "source": {"kind": "stage", "stage": "young"}},
             {"id": "smug", "learned": false, "source": {"kind": "rule", "rule": "kept_3"}}],
  "rewards": [{"id": "r1", "kind": "stage", "ref": "kitten", "earnedAt": 790000000},
              {"id": "r2", "kind": "stage", "ref": "young", "earnedAt": 795000000}],
  "cards": {"found": 3, "gift": {"at": 5, "item": "silver_chain", "earned": false}},
  "future": "ignored"
})";

TEST(PurrlCatGrowthCodingTest, RoundTripsDroppingUnknownKeysAndAbsentOptionals) {
  const auto growth = decodeJsonText<PurrlCatGrowth>(kGrowth);
  ASSERT_TRUE(growth.has_value()) << growth.error().message();
  EXPECT_EQ(growth->tricks[0].learnedAt, Date::fromSecondsSince2001(795000000.5));
  EXPECT_FALSE(growth->tricks[1].learnedAt.has_value());
  ASSERT_TRUE(growth->cards.gift.has_value());
  EXPECT_EQ(growth->cards.gift->item, "silver_chain");

  const std::string encoded = encodeRecord(*growth).dump();
  EXPECT_EQ(encoded.find("future"), std::string::npos);
  EXPECT_NE(encoded.find(R"({"id":"smug","learned":false,"source")"), std::string::npos);
  EXPECT_EQ(decodeJsonText<PurrlCatGrowth>(encoded), growth);
}

struct StateErrorCase {
  std::string name;
  std::string json;
  std::string error;
  friend void PrintTo(const StateErrorCase& c, std::ostream* out) { *out << c.name; }
};

class PurrlCatStateErrorTest : public ::testing::TestWithParam<StateErrorCase> {};

TEST_P(PurrlCatStateErrorTest, NamesTheFailingKey) {
  const auto state = decodeJsonText<PurrlCatState>(GetParam().json);
  ASSERT_FALSE(state.has_value());
  EXPECT_EQ(state.error().message(), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Closed, PurrlCatStateErrorTest,
    ::testing::Values(
        StateErrorCase{"unknownMood", R"({"mood":"ecstatic","reason":"calm","petted":false})",
                       "mood: unknown value \"ecstatic\""},
        StateErrorCase{"camelCaseReasonIsNotTheRawValue", R"({"mood":"happy","reason":"keptKovi","petted":false})",
                       "reason: unknown value \"keptKovi\""},
        StateErrorCase{"missingPetted", R"({"mood":"happy","reason":"calm"})", "petted: missing key"},
        StateErrorCase{"growthWithoutCards",
                       R"({"mood":"happy","reason":"calm","petted":true,
                           "growth":{"level":0,"stage":"kitten","daysTogether":0,"tricks":[],"rewards":[]}})",
                       "growth.cards: missing key"},
        StateErrorCase{"trickDateAsText",
                       R"({"mood":"happy","reason":"calm","petted":true,"growth":{"level":0,"stage":"kitten",
                           "daysTogether":0,"tricks":[{"id":"talk","learned":true,"learnedAt":"yesterday",
                           "source":{"kind":"stage"}}],"rewards":[],"cards":{"found":0}}})",
                       "growth.tricks[0].learnedAt: expected a number, found a string"}),
    [](const auto& info) { return info.param.name; });

TEST(PurrlCatStateTest, NullOptionalsReadAsAbsent) {
  const auto state =
      decodeJsonText<PurrlCatState>(R"({"name":null,"mood":"sulky","reason":"missed_kovi","petted":false,"growth":null})");
  ASSERT_TRUE(state.has_value()) << state.error().message();
  EXPECT_EQ(*state, (PurrlCatState{std::nullopt, PurrlCatMood::sulky, PurrlCatMoodReason::missedKovi, false, {}}));
  EXPECT_EQ(encodeRecord(*state).dump(), R"({"mood":"sulky","reason":"missed_kovi","petted":false})");
}

struct ShowableCase {
  std::string kind;
  std::string ref;
  bool showable;
};

TEST(PurrlCatRewardFilterTest, ShowsOnlyWhatThisClientCanDraw) {
  const std::vector<ShowableCase> cases{
      {"stage", "kitten", false},     {"stage", "young", true},        {"stage", "elder", false},
      {"trick", "talk", true},        {"trick", "backflip", false},    {"trick", "Talk", false},
      {"item", "silver_chain", true}, {"hat", "silver_chain", false},
  };
  for (const ShowableCase& c : cases) {
    SCOPED_TRACE(c.kind + "/" + c.ref);
    EXPECT_EQ(PurrlCatGrowthRules::isShowable(PurrlCatGrowthReward{"id", c.kind, c.ref, {}}), c.showable);
  }
}

PurrlCatGrowthReward reward(std::string id, std::string kind, std::string ref) {
  return PurrlCatGrowthReward{std::move(id), std::move(kind), std::move(ref), Date::fromSecondsSince2001(1)};
}

PurrlCatGrowth growthWith(std::vector<PurrlCatGrowthReward> rewards) {
  PurrlCatGrowth growth;
  growth.level = 2;
  growth.stage = "grown";
  growth.daysTogether = 40;
  growth.rewards = std::move(rewards);
  return growth;
}

struct MomentCase {
  std::string name;
  std::vector<PurrlCatGrowthReward> rewards;
  std::set<std::string, std::less<>> seen;
  std::optional<PurrlCatGrowthMoment> moment;
  PurrlCatGrowthMoment::Lead lead;
  std::vector<std::string> furtherTricks;
  friend void PrintTo(const MomentCase& c, std::ostream* out) { *out << c.name; }
};

class PurrlCatGrowthMomentTest : public ::testing::TestWithParam<MomentCase> {};

TEST_P(PurrlCatGrowthMomentTest, CelebratesEachNewShowableRewardOnce) {
  const MomentCase& c = GetParam();
  const auto moment = PurrlCatGrowthMoment::seenAfter(c.seen, growthWith(c.rewards));
  ASSERT_EQ(moment.has_value(), c.moment.has_value());
  if (!moment) return;
  EXPECT_EQ(encodeRecord(*moment).dump(), encodeRecord(*c.moment).dump());
  EXPECT_EQ(moment->lead(), c.lead);
  EXPECT_EQ(moment->furtherTricks(), c.furtherTricks);

  // Once shown, the same rewards make no moment again.
  auto seen = c.seen;
  seen.insert(moment->rewardIDs.begin(), moment->rewardIDs.end());
  EXPECT_FALSE(PurrlCatGrowthMoment::seenAfter(seen, growthWith(c.rewards)).has_value());
}

using Moment = PurrlCatGrowthMoment;

INSTANTIATE_TEST_SUITE_P(
    Rewards, PurrlCatGrowthMomentTest,
    ::testing::Values(
        MomentCase{"kittenStageMakesNoMoment", {reward("a", "stage", "kitten")}, {}, std::nullopt, {}, {}},
        MomentCase{"unknownKindMakesNoMoment", {reward("a", "hat", "top_hat")}, {}, std::nullopt, {}, {}},
        MomentCase{"seenRewardsMakeNoMoment", {reward("a", "trick", "wave")}, {"a"}, std::nullopt, {}, {}},
        MomentCase{"tricksInTrickListOrderLeadWithTheFirst",
                   {reward("a", "trick", "study"), reward("b", "trick", "talk"), reward("c", "trick", "smug")},
                   {},
                   Moment{std::nullopt, std::nullopt, {"talk", "smug", "study"}, {}, {"b", "c", "a"}, 40},
                   Moment::Trick{"talk"},
                   {"smug", "study"}},
        MomentCase{"growUpLeadsAndKeepsAllTricksBelow",
                   {reward("t", "trick", "wave"), reward("s", "stage", "young"), reward("i", "item", "silver_chain")},
                   {},
                   Moment{0, 1, {"wave"}, {"silver_chain"}, {"s", "t", "i"}, 40},
                   Moment::GrowUp{0, 1},
                   {"wave"}},
        MomentCase{"twoStagesAtOnceSpanBoth",
                   {reward("g", "stage", "grown"), reward("y", "stage", "young"), reward("k", "stage", "kitten")},
                   {},
                   Moment{0, 2, {}, {}, {"y", "g"}, 40},
                   Moment::GrowUp{0, 2},
                   {}},
        MomentCase{"onlyTheUnseenStage",
                   {reward("y", "stage", "young"), reward("g", "stage", "grown")},
                   {"y"},
                   Moment{1, 2, {}, {}, {"g"}, 40},
                   Moment::GrowUp{1, 2},
                   {}},
        MomentCase{"itemAlone",
                   {reward("i", "item", "silver_chain"), reward("x", "trick", "backflip")},
                   {},
                   Moment{std::nullopt, std::nullopt, {}, {"silver_chain"}, {"i"}, 40},
                   Moment::Item{"silver_chain"},
                   {}}),
    [](const auto& info) { return info.param.name; });

TEST(PurrlCatGrowthMomentTest, NoGrowthNoMoment) {
  EXPECT_FALSE(PurrlCatGrowthMoment::seenAfter({}, std::nullopt).has_value());
}

TEST(PurrlCatGrowthMomentTest, LeadIsNeverAbsent) {
  EXPECT_EQ(PurrlCatGrowthMoment{}.lead(), PurrlCatGrowthMoment::Lead(PurrlCatGrowthMoment::Item{""}));
  // A moment with only one level is not a growing-up moment.
  const PurrlCatGrowthMoment halfLevel{std::nullopt, 2, {"talk", "wave"}, {}, {}, 0};
  EXPECT_EQ(halfLevel.lead(), PurrlCatGrowthMoment::Lead(PurrlCatGrowthMoment::Trick{"talk"}));
  EXPECT_EQ(halfLevel.furtherTricks(), (std::vector<std::string>{"wave"}));
}

}  // namespace
}  // namespace kovi
