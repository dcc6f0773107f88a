#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingRuleDescription.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

const std::string kSource = "Apple Sağlık’taki adımlara göre değerlendirilir.";
const std::string kResults = "Sonuçlar, bu kovi için kabul edilen Apple Sağlık kayıtlarıyla hesaplanır.";
const std::string kEqual = "Hedefi tutturanlar ödül havuzunu eşit paylaşır.";

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

// Two whole descriptions: the default anchored daily goal and a calendar total goal.
TEST(WalkingRuleDescription, DescribesTheRulesInTurkish) {
  const auto dailyText = WalkingRuleDescription::describe(rulesWith("{}"), "tr");
  EXPECT_EQ(dailyText.title, "Her gün hedefi tamamla (10.000 adım)");
  EXPECT_EQ(dailyText.lines,
            (std::vector<std::string>{
                "Her gün hedefi tamamlaman gerekiyor (7 gün).", kSource,
                "Adımlar kovi’in başladığı andan itibaren sayılır; her gün o saatten başlayıp 24 saat sürer.",
                kResults,
                "Eksik veriler kovi bittikten sonra 24 saate kadar yeniden kontrol edilir; yine gelmezse başarısız "
                "sayılır.",
                kEqual, "Kovi başladıktan sonra ayrılmanın cezası yok."}));

  const auto totalText = WalkingRuleDescription::describe(
      rulesWith(R"({"goalMode":"total","stepTarget":1250000,"failurePolicy":"closestWins","exitPenaltyBps":10000,)"
                R"("dayBoundary":"calendar","verificationWindowHours":48})"),
      "tr");
  EXPECT_EQ(totalText.title, "Kovi boyunca toplam 1.250.000 adım");
  EXPECT_EQ(totalText.lines,
            (std::vector<std::string>{
                "Günler tek tek değil, kovi sonundaki toplam değerlendirilir.", kSource,
                "Kovi’in başladığı gündeki adımların tamamı sayılır.", kResults,
                "Eksik veriler kovi bittikten sonra 48 saate kadar yeniden kontrol edilir; yine gelmezse başarısız "
                "sayılır.",
                kEqual, "Kimse hedefi tamamlayamazsa hedefe en yakın olan kazanacak; beraberlikte paylaşılacak.",
                "Kovi başladıktan sonra ayrılırsan katkının tamamı ödül havuzunda kalacak."}));
}

// Other rule shapes: the title and the lines that set them apart.
TEST(WalkingRuleDescription, NamesEachModeAndItsDistinctLine) {
  struct Case { std::string_view patch; std::string title; std::vector<std::string> lines; };
  const std::vector<Case> cases{
      {R"({"requiredSuccessfulDays":5,"dayBoundary":"calendar","firstDay":"midnight"})",
       "Her gün hedefi tamamla (10.000 adım)",
       {"7 günlük kovi’te hedefi en az 5 gün tamamlaman gerekiyor.",
        "Adımlar kovi’in başlangıcından sonraki ilk gece yarısından itibaren sayılır."}},
      {R"({"mode":"race","goalMode":null,"raceMode":"firstToTarget","stepTarget":100000,"payoutRule":"ranked",)"
       R"("rankPayoutsBps":[6000,3000,1000],"failurePolicy":"rollover"})",
       "100.000 adıma ilk ulaşan kazanır",
       {"Apple Sağlık kayıt saatine göre hedefe ilk ulaşan kazanır.",
        "Ödül sıralamaya göre paylaşılır: 1. %60, 2. %30, 3. %10.",
        "Kimse yarışı tamamlayamazsa havuz sonraki kovi için bekletilecek. Aktarım için aynı grubun yeni koşulları "
        "onaylaması gerekir."}},
      {R"({"mode":"race","goalMode":null,"raceMode":"highestTotal","stepTarget":null,"minimumEligibility":50000,)"
       R"("failurePolicy":"closestWins"})",
       "7 günde en çok adım",
       {"Sıralamaya girmek için en az 50.000 adım gerekiyor.",
        "Kimse en az adım şartını sağlayamazsa en çok adım atan kazanacak; beraberlikte paylaşılacak."}},
      {R"({"mode":"race","goalMode":null,"raceMode":"highestTotal","durationDays":30,"failurePolicy":"refund"})",
       "30 günde en çok adım",
       {"Süre bitince en çok adım atan kazanır.", "En çok adım atan kazanacak; beraberlikte paylaşılacak."}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.patch);
    const auto description = WalkingRuleDescription::describe(rulesWith(example.patch), "tr");
    EXPECT_EQ(description.title, example.title);
    for (const std::string& line : example.lines) {
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
