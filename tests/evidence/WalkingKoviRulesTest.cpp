#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "KoviKit/evidence/V6WalkingContext.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/Json.h"
#include "tests/evidence/WalkingTestSupport.h"

namespace kovi {
namespace {

// Absent optionals are left out, an empty array stays, fixed windows follow `timezone`'s slot.
constexpr std::string_view kDailyRules =
    R"({"mode":"goal","goalMode":"daily","durationDays":3,"stepTarget":8000,"exitPenaltyBps":0,)"
    R"("payoutRule":"equalSuccessful","rankPayoutsBps":[],"verificationWindowHours":24,)"
    R"("dayWindows":[{"start":1774735200000,"end":1774821600000}]})";

constexpr std::string_view kDailyHash = "5bf18c943abca9a178309d686099eead2b268f5d3ee7a81b206959ca324a7e64";

// canonical-rules.json: rules (from their own file, else the canonical text itself), their canonical text, and
// its sha256sum computed outside Kovi. The canonical form must not care about key order or spacing.
TEST(WalkingRulesCanonical, WritesDeclaredOrderWithoutWhitespaceAndHashesIt) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("canonical-rules.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const std::string canonical = example["canonical"];
    const auto rules = decodeJsonText<WalkingKoviRules>(
        example.contains("input") ? testing::evidenceData(example["input"].get<std::string>()) : canonical);
    ASSERT_TRUE(rules.has_value()) << rules.error().message();
    EXPECT_EQ(rules->canonicalJson(), canonical);
    EXPECT_EQ(rules->rulesHash(), example["hash"].get<std::string>());
    // The canonical text decodes back to the same rules.
    EXPECT_EQ(decodeJsonText<WalkingKoviRules>(rules->canonicalJson()), rules);
  }
}

// refused-rules.json: rows of a patch merged into the daily rules (null drops a key) and the error naming the key;
// the whole record is refused.
TEST(WalkingRulesRefused, RefusesTheWholeRecordAndNamesTheKey) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("refused-rules.json"))) {
    SCOPED_TRACE(example[0].dump());
    nlohmann::json document = nlohmann::json::parse(kDailyRules);
    document.merge_patch(example[0]);
    const auto rules = JsonView(document).as<WalkingKoviRules>();
    ASSERT_FALSE(rules.has_value()) << document.dump();
    EXPECT_EQ(rules.error().message(), example[1]);
  }
  // With a repeated key the hash would depend on which copy a reader keeps.
  const auto repeated = decodeJsonText<WalkingKoviRules>(R"({"stepTarget":1,)" + std::string(kDailyRules.substr(1)));
  ASSERT_FALSE(repeated.has_value());
  EXPECT_EQ(repeated.error().message(), "stepTarget: duplicate key");
}

TEST(WalkingContextRulesHash, RefusesAContextWhoseRulesDoNotHashToItsHash) {
  V6WalkingContext context;
  context.rules = decodeJsonText<WalkingKoviRules>(kDailyRules).value();
  const std::string hash(kDailyHash);
  std::string upper = hash;
  std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
  for (const auto& [given, accepted] : {std::pair{hash, true}, std::pair{upper, true},
                                        std::pair{hash.substr(0, 63) + "5", false}, std::pair{std::string(), false}}) {
    SCOPED_TRACE(given);
    context.rulesHash = given;
    const auto verified = context.verifyRulesHash();
    EXPECT_EQ(verified.has_value(), accepted);
    if (!verified) {
      EXPECT_EQ(verified.error().code, "walking_rules_hash_mismatch");
      EXPECT_EQ(verified.error().message(),
                "Kovi’in kural özeti bu cihazda doğrulanamadı. Kovi’i yenileyip yeniden dene.");
    }
  }
}

}  // namespace
}  // namespace kovi
