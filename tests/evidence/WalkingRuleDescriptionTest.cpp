#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingRuleDescription.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using Rules = WalkingKoviRules;

struct DescriptionCase {
  std::string name;
  std::function<void(Rules&)> edit;  // applied to a 7-day daily goal of 10000 steps
  std::string title;
  std::vector<std::string> lines;
};

void PrintTo(const DescriptionCase& example, std::ostream* out) { *out << example.name; }

const std::string kSource = "Apple Sağlık’taki adımlara göre değerlendirilir.";
const std::string kAnchored =
    "Adımlar kovi’in başladığı andan itibaren sayılır; her gün o saatten başlayıp 24 saat sürer.";
const std::string kResults = "Sonuçlar, bu kovi için kabul edilen Apple Sağlık kayıtlarıyla hesaplanır.";
const std::string kVerification =
    "Eksik veriler kovi bittikten sonra 24 saate kadar yeniden kontrol edilir; yine gelmezse başarısız sayılır.";
const std::string kEqual = "Hedefi tutturanlar ödül havuzunu eşit paylaşır.";
const std::string kNoPenalty = "Kovi başladıktan sonra ayrılmanın cezası yok.";

class WalkingRuleDescriptionTest : public ::testing::TestWithParam<DescriptionCase> {};

TEST_P(WalkingRuleDescriptionTest, DescribesTheRulesInTurkish) {
  const DescriptionCase& example = GetParam();
  Rules rules = testing::dailyGoal(7, 10000);
  example.edit(rules);
  const auto description = WalkingRuleDescription::describe(rules, "tr");
  EXPECT_EQ(description.title, example.title);
  EXPECT_EQ(description.lines, example.lines);
}

INSTANTIATE_TEST_SUITE_P(
    Descriptions, WalkingRuleDescriptionTest,
    ::testing::Values(
        DescriptionCase{"dailyEveryDay",
                        [](Rules&) {},
                        "Her gün hedefi tamamla (10.000 adım)",
                        {"Her gün hedefi tamamlaman gerekiyor (7 gün).", kSource, kAnchored, kResults, kVerification,
                         kEqual, kNoPenalty}},
        DescriptionCase{"dailyFiveOfSevenRefund",
                        [](Rules& r) {
                          r.requiredSuccessfulDays = 5;
                          r.failurePolicy = Rules::FailurePolicy::refund;
                          r.exitPenaltyBps = 5000;
                          r.dayBoundary = WalkingDayBoundary::calendar;
                          r.firstDay = Rules::FirstDay::midnight;
                        },
                        "Her gün hedefi tamamla (10.000 adım)",
                        {"7 günlük kovi’te hedefi en az 5 gün tamamlaman gerekiyor.", kSource,
                         "Adımlar kovi’in başlangıcından sonraki ilk gece yarısından itibaren sayılır.", kResults,
                         kVerification, kEqual, "Kimse hedefi tamamlayamazsa katkılar kalan katılımcılara iade edilecek.",
                         "Kovi başladıktan sonra ayrılırsan katkının %50’si ödül havuzunda kalacak."}},
        DescriptionCase{"totalGoalClosestWins",
                        [](Rules& r) {
                          r.goalMode = Rules::GoalMode::total;
                          r.stepTarget = 1250000;
                          r.failurePolicy = Rules::FailurePolicy::closestWins;
                          r.exitPenaltyBps = 10000;
                          r.dayBoundary = WalkingDayBoundary::calendar;
                          r.verificationWindowHours = 48;
                        },
                        "Kovi boyunca toplam 1.250.000 adım",
                        {"Günler tek tek değil, kovi sonundaki toplam değerlendirilir.", kSource,
                         "Kovi’in başladığı gündeki adımların tamamı sayılır.", kResults,
                         "Eksik veriler kovi bittikten sonra 48 saate kadar yeniden kontrol edilir; yine gelmezse "
                         "başarısız sayılır.",
                         kEqual, "Kimse hedefi tamamlayamazsa hedefe en yakın olan kazanacak; beraberlikte paylaşılacak.",
                         "Kovi başladıktan sonra ayrılırsan katkının tamamı ödül havuzunda kalacak."}},
        DescriptionCase{"firstToTargetRankedRollover",
                        [](Rules& r) {
                          r.mode = Rules::Mode::race;
                          r.goalMode.reset();
                          r.raceMode = Rules::RaceMode::firstToTarget;
                          r.stepTarget = 100000;
                          r.payoutRule = Rules::PayoutRule::ranked;
                          r.rankPayoutsBps = {6000, 3000, 1000};
                          r.failurePolicy = Rules::FailurePolicy::rollover;
                          r.exitPenaltyBps = 2500;
                        },
                        "100.000 adıma ilk ulaşan kazanır",
                        {"7 gün içinde hedefe ilk ulaşan kazanır.",
                         "Apple Sağlık kayıt saatine göre hedefe ilk ulaşan kazanır.", kSource, kAnchored, kResults,
                         kVerification, "Ödül sıralamaya göre paylaşılır: 1. %60, 2. %30, 3. %10.",
                         "Kimse yarışı tamamlayamazsa havuz sonraki kovi için bekletilecek. Aktarım için aynı grubun "
                         "yeni koşulları onaylaması gerekir.",
                         "Kovi başladıktan sonra ayrılırsan katkının %25’i ödül havuzunda kalacak."}},
        DescriptionCase{"highestTotalWithMinimumWinnerTakesAll",
                        [](Rules& r) {
                          r.mode = Rules::Mode::race;
                          r.goalMode.reset();
                          r.raceMode = Rules::RaceMode::highestTotal;
                          r.stepTarget.reset();
                          r.minimumEligibility = 50000;
                          r.payoutRule = Rules::PayoutRule::ranked;
                          r.rankPayoutsBps = {10000};
                          r.failurePolicy = Rules::FailurePolicy::closestWins;
                          r.exitPenaltyBps = 1000;
                        },
                        "7 günde en çok adım",
                        {"Süre bitince en az 50.000 adım atanlar arasında en çok adım atan kazanır.",
                         "Sıralamaya girmek için en az 50.000 adım gerekiyor.", kSource, kAnchored, kResults,
                         kVerification, "Ödülün tamamını birinci gelen alır.",
                         "Kimse en az adım şartını sağlayamazsa en çok adım atan kazanacak; beraberlikte paylaşılacak.",
                         "Kovi başladıktan sonra ayrılırsan katkının %10’u ödül havuzunda kalacak."}},
        DescriptionCase{"highestTotalWithoutMinimum",
                        [](Rules& r) {
                          r.mode = Rules::Mode::race;
                          r.goalMode.reset();
                          r.raceMode = Rules::RaceMode::highestTotal;
                          r.durationDays = 30;
                          r.failurePolicy = Rules::FailurePolicy::refund;
                          r.exitPenaltyBps = 3333;
                        },
                        "30 günde en çok adım",
                        {"Süre bitince en çok adım atan kazanır.", kSource, kAnchored, kResults, kVerification, kEqual,
                         "En çok adım atan kazanacak; beraberlikte paylaşılacak.",
                         "Kovi başladıktan sonra ayrılırsan katkının %33,33 kadarı ödül havuzunda kalacak."}}),
    [](const auto& info) { return info.param.name; });

TEST(WalkingRuleDescription, WritesAnOddExitPenaltyInTheChosenLocale) {
  struct Case {
    std::string locale;
    int basisPoints;
    std::string percentage;
  };
  for (const Case& example : {Case{"tr", 7500, "%75"}, Case{"en", 7500, "75%"}, Case{"tr", 1250, "%12,5"},
                              Case{"en", 1250, "12.5%"}, Case{"de", 333, "3,33\u00A0%"}}) {
    SCOPED_TRACE(example.locale + " " + std::to_string(example.basisPoints));
    Rules rules = testing::dailyGoal(7, 10000);
    rules.exitPenaltyBps = example.basisPoints;
    const auto lines = WalkingRuleDescription::describe(rules, example.locale).lines;
    EXPECT_EQ(lines.back(), "Kovi başladıktan sonra ayrılırsan katkının " + example.percentage +
                                " kadarı ödül havuzunda kalacak.");
  }
}

}  // namespace
}  // namespace kovi
