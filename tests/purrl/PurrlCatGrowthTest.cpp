#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlCatGrowthMoment.h"
#include "KoviKit/purrl/PurrlCatGrowthRules.h"
#include "tests/support/TestData.h"
#include "tests/support/Refusal.h"

namespace kovi {
namespace {

const std::string kGrowth = testing::testDataFile("purrl", "cat-growth.json");

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

TEST(PurrlCatStateTest, RefusalsNameTheFailingKey) {
  const struct {
    std::string json;
    std::string error;
  } cases[] = {
      {R"({"mood":"ecstatic","reason":"calm","petted":false})", "mood: unknown value \"ecstatic\""},
      // The raw value, not the case's name.
      {R"({"mood":"happy","reason":"keptKovi","petted":false})", "reason: unknown value \"keptKovi\""},
      {R"({"mood":"happy","reason":"calm"})", "petted: missing key"},
      {R"({"mood":"happy","reason":"calm","petted":true,
           "growth":{"level":0,"stage":"kitten","daysTogether":0,"tricks":[],"rewards":[]}})",
       "growth.cards: missing key"},
      {R"({"mood":"happy","reason":"calm","petted":true,"growth":{"level":0,"stage":"kitten",
           "daysTogether":0,"tricks":[{"id":"talk","learned":true,"learnedAt":"yesterday",
           "source":{"kind":"stage"}}],"rewards":[],"cards":{"found":0}}})",
       "growth.tricks[0].learnedAt: expected a number, found a string"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.error);
    EXPECT_EQ(testing::refusalOf(decodeJsonText<PurrlCatState>(c.json)), c.error);
  }
}

TEST(PurrlCatStateTest, NullOptionalsReadAsAbsent) {
  const auto state =
      decodeJsonText<PurrlCatState>(R"({"name":null,"mood":"sulky","reason":"missed_kovi","petted":false,"growth":null})");
  ASSERT_TRUE(state.has_value()) << state.error().message();
  EXPECT_EQ(*state, (PurrlCatState{std::nullopt, PurrlCatMood::sulky, PurrlCatMoodReason::missedKovi, false, {}}));
  EXPECT_EQ(encodeRecord(*state).dump(), R"({"mood":"sulky","reason":"missed_kovi","petted":false})");
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

using Moment = PurrlCatGrowthMoment;

TEST(PurrlCatGrowthMomentTest, CelebratesEachNewShowableRewardOnce) {
  const struct {
    std::string name;
    std::vector<PurrlCatGrowthReward> rewards;
    std::set<std::string, std::less<>> seen;
    std::optional<Moment> moment;
    Moment::Lead lead;
    std::vector<std::string> furtherTricks;
  } cases[] = {
      // Only what this client can draw makes a moment: no kitten or elder
      // stage, no trick it does not know (names are exact), no other kind.
      {"nothing showable makes no moment",
       {reward("a", "stage", "kitten"), reward("b", "stage", "elder"), reward("c", "trick", "Talk"),
        reward("d", "hat", "silver_chain")},
       {}, std::nullopt, {}, {}},
      {"seen rewards make no moment", {reward("a", "trick", "wave")}, {"a"}, std::nullopt, {}, {}},
      {"tricks in trick-list order lead with the first",
       {reward("a", "trick", "study"), reward("b", "trick", "talk"), reward("c", "trick", "smug")}, {},
       Moment{std::nullopt, std::nullopt, {"talk", "smug", "study"}, {}, {"b", "c", "a"}, 40}, Moment::Trick{"talk"},
       {"smug", "study"}},
      {"growing up leads and keeps all tricks below",
       {reward("t", "trick", "wave"), reward("s", "stage", "young"), reward("i", "item", "silver_chain")}, {},
       Moment{0, 1, {"wave"}, {"silver_chain"}, {"s", "t", "i"}, 40}, Moment::GrowUp{0, 1}, {"wave"}},
      {"two stages at once span both",
       {reward("g", "stage", "grown"), reward("y", "stage", "young"), reward("k", "stage", "kitten")}, {},
       Moment{0, 2, {}, {}, {"y", "g"}, 40}, Moment::GrowUp{0, 2}, {}},
      {"only the unseen stage", {reward("y", "stage", "young"), reward("g", "stage", "grown")}, {"y"},
       Moment{1, 2, {}, {}, {"g"}, 40}, Moment::GrowUp{1, 2}, {}},
      {"item alone", {reward("i", "item", "silver_chain"), reward("x", "trick", "backflip")}, {},
       Moment{std::nullopt, std::nullopt, {}, {"silver_chain"}, {"i"}, 40}, Moment::Item{"silver_chain"}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto moment = Moment::seenAfter(c.seen, growthWith(c.rewards));
    ASSERT_EQ(moment.has_value(), c.moment.has_value());
    if (!moment) continue;
    EXPECT_EQ(encodeRecord(*moment).dump(), encodeRecord(*c.moment).dump());
    EXPECT_EQ(moment->lead(), c.lead);
    EXPECT_EQ(moment->furtherTricks(), c.furtherTricks);
    // Once shown, the same rewards make no moment again.
    auto seen = c.seen;
    seen.insert(moment->rewardIDs.begin(), moment->rewardIDs.end());
    EXPECT_FALSE(Moment::seenAfter(seen, growthWith(c.rewards)).has_value());
  }
}

TEST(PurrlCatGrowthMomentTest, NoGrowthNoMomentAndALeadAlways) {
  EXPECT_FALSE(Moment::seenAfter({}, std::nullopt).has_value());
  EXPECT_EQ(Moment{}.lead(), Moment::Lead(Moment::Item{""}));
  // A moment with only one level is not a growing-up moment.
  const Moment halfLevel{std::nullopt, 2, {"talk", "wave"}, {}, {}, 0};
  EXPECT_EQ(halfLevel.lead(), Moment::Lead(Moment::Trick{"talk"}));
  EXPECT_EQ(halfLevel.furtherTricks(), (std::vector<std::string>{"wave"}));
}

}  // namespace
}  // namespace kovi
