#include <gtest/gtest.h>

#include <string>

#include "KoviKit/evidence/V6WalkingContext.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

// Keys in a shuffled order and with whitespace: the canonical form must not care.
constexpr std::string_view kRaceRules = R"({
  "firstDay": "midnight", "timezone": "Europe/Istanbul", "dayBoundary": "calendar",
  "verificationWindowHours": 24, "rankPayoutsBps": [6000, 3000, 1000], "payoutRule": "ranked",
  "exitPenaltyBps": 2500, "failurePolicy": "closestWins", "minimumEligibility": 50000,
  "durationDays": 7, "raceMode": "highestTotal", "mode": "race"
})";

constexpr std::string_view kRaceCanonical =
    R"({"mode":"race","raceMode":"highestTotal","durationDays":7,"minimumEligibility":50000,)"
    R"("failurePolicy":"closestWins","exitPenaltyBps":2500,"payoutRule":"ranked","rankPayoutsBps":[6000,3000,1000],)"
    R"("verificationWindowHours":24,"dayBoundary":"calendar","timezone":"Europe/Istanbul","firstDay":"midnight"})";

// Absent optionals are left out, an empty array stays, fixed windows follow `timezone`'s slot.
constexpr std::string_view kDailyRules =
    R"({"mode":"goal","goalMode":"daily","durationDays":3,"stepTarget":8000,"exitPenaltyBps":0,)"
    R"("payoutRule":"equalSuccessful","rankPayoutsBps":[],"verificationWindowHours":24,)"
    R"("dayWindows":[{"start":1774735200000,"end":1774821600000}]})";

struct CanonicalCase {
  std::string_view name;
  std::string_view input;
  std::string_view canonical;
  std::string_view hash;  // sha256sum of the canonical text, computed outside Kovi
};

TEST(WalkingRulesCanonical, WritesDeclaredOrderWithoutWhitespaceAndHashesIt) {
  for (const CanonicalCase& example :
       {CanonicalCase{"race", kRaceRules, kRaceCanonical,
                      "c6c7b868aac70e2d099ca8db98f400a580209582daef845a5599aa6b80640dc1"},
        CanonicalCase{"daily", kDailyRules, kDailyRules,
                      "5bf18c943abca9a178309d686099eead2b268f5d3ee7a81b206959ca324a7e64"}}) {
    SCOPED_TRACE(example.name);
    const auto rules = decodeJsonText<WalkingKoviRules>(example.input);
    ASSERT_TRUE(rules.has_value()) << rules.error().message();
    EXPECT_EQ(rules->canonicalJson(), example.canonical);
    EXPECT_EQ(rules->rulesHash(), example.hash);
    // The canonical text decodes back to the same rules.
    EXPECT_EQ(decodeJsonText<WalkingKoviRules>(rules->canonicalJson()), rules);
  }
}

TEST(WalkingRulesCanonical, WriterEscapesOnlyWhatJsonRequiresAndWritesIntegerExtremes) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("a").beginArray().value(-9223372036854775807LL - 1).beginObject().endObject();
  writer.value(std::uint64_t{18446744073709551615ULL}).endArray().key("b").value("a\"b\\c\nd/\xC3\xA9\x01\t");
  writer.endObject();
  EXPECT_EQ(writer.text(), R"({"a":[-9223372036854775808,{},18446744073709551615],"b":"a\"b\\c\nd/é\u0001\t"})");
}

struct RefusedCase {
  std::string_view name;
  std::string_view key;    // key of the daily rules to set
  std::string_view value;  // its new JSON value, or "" to drop the key
  std::string_view error;
};

// Each case sets (or drops) one key of the daily rules; the whole record is refused, naming the key.
TEST(WalkingRulesRefused, RefusesTheWholeRecordAndNamesTheKey) {
  for (const RefusedCase& example : {
       RefusedCase{"unknownMode", "mode", R"("walk")", R"(mode: unknown value "walk")"},
       RefusedCase{"unknownFirstDay", "firstDay", R"("tomorrow")", R"(firstDay: unknown value "tomorrow")"},
       RefusedCase{"unknownKey", "bonus", "1", "bonus: unknown key"},
       RefusedCase{"missingDuration", "durationDays", "", "durationDays: missing key"},
       RefusedCase{"fractionalTarget", "stepTarget", "8000.5", "stepTarget: expected an integer, found a number"},
       RefusedCase{"windowWithExtraKey", "dayWindows", R"([{"start":1,"end":2,"day":0}])",
                   "dayWindows[0].day: unknown key"},
       RefusedCase{"shareAsText", "rankPayoutsBps", R"(["6000"])",
                   "rankPayoutsBps[0]: expected an integer, found a string"},
       RefusedCase{"integralFloat", "durationDays", "3.0", "durationDays: expected an integer, found a number"},
       RefusedCase{"exponent", "stepTarget", "8e3", "stepTarget: expected an integer, found a number"},
       RefusedCase{"negativeTarget", "stepTarget", "-1", "stepTarget: must not be negative"},
       RefusedCase{"noDays", "durationDays", "0", "durationDays: must be 1 to 366"},
       RefusedCase{"goalWithoutGoalMode", "goalMode", "", "goalMode: required in goal mode"},
       RefusedCase{"goalWithRaceMode", "raceMode", R"("highestTotal")", "raceMode: only for race mode"},
       RefusedCase{"raceWithGoalMode", "mode", R"("race")", "raceMode: required in race mode"},
       RefusedCase{"moreRequiredDaysThanDays", "requiredSuccessfulDays", "4",
                   "requiredSuccessfulDays: must be 1 to durationDays (3)"},
       RefusedCase{"noRequiredDays", "requiredSuccessfulDays", "0",
                   "requiredSuccessfulDays: must be 1 to durationDays (3)"},
       RefusedCase{"rankedWithoutShares", "payoutRule", R"("ranked")",
                   "rankPayoutsBps: a ranked payout needs 1 to 100 shares totalling 10000"},
       RefusedCase{"shareOfZero", "rankPayoutsBps", "[0]", "rankPayoutsBps: each share must be 1 to 10000"}}) {
    SCOPED_TRACE(example.name);
    nlohmann::json document = nlohmann::json::parse(kDailyRules);
    if (example.value.empty()) {
      document.erase(std::string(example.key));
    } else {
      document[std::string(example.key)] = nlohmann::json::parse(example.value);
    }
    const auto rules = JsonView(document).as<WalkingKoviRules>();
    ASSERT_FALSE(rules.has_value()) << document.dump();
    EXPECT_EQ(rules.error().message(), example.error);
  }
}

// With a repeated key the hash would depend on which copy a reader keeps.
TEST(WalkingRulesRefused, RefusesARepeatedKey) {
  std::string text(kDailyRules);
  text.insert(1, R"("stepTarget":1,)");
  const auto rules = decodeJsonText<WalkingKoviRules>(text);
  ASSERT_FALSE(rules.has_value());
  EXPECT_EQ(rules.error().message(), "stepTarget: duplicate key");
}

TEST(WalkingContextRulesHash, RefusesAContextWhoseRulesDoNotHashToItsHash) {
  auto rules = decodeJsonText<WalkingKoviRules>(kDailyRules);
  ASSERT_TRUE(rules.has_value());
  V6WalkingContext context;
  context.rules = *rules;

  struct Case {
    std::string_view hash;
    bool accepted;
  };
  for (const Case& example : {Case{"5bf18c943abca9a178309d686099eead2b268f5d3ee7a81b206959ca324a7e64", true},
                              Case{"5BF18C943ABCA9A178309D686099EEAD2B268F5D3EE7A81B206959CA324A7E64", true},
                              Case{"5bf18c943abca9a178309d686099eead2b268f5d3ee7a81b206959ca324a7e65", false},
                              Case{"", false}}) {
    SCOPED_TRACE(example.hash);
    context.rulesHash = std::string(example.hash);
    const auto verified = context.verifyRulesHash();
    EXPECT_EQ(verified.has_value(), example.accepted);
    if (!verified) {
      EXPECT_EQ(verified.error().code, "walking_rules_hash_mismatch");
      EXPECT_EQ(verified.error().message(),
                "Kovi’in kural özeti bu cihazda doğrulanamadı. Kovi’i yenileyip yeniden dene.");
    }
  }
}

}  // namespace
}  // namespace kovi
