#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingRuleDescription.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using Rules = WalkingKoviRules;

const std::string kSource = "Apple Sağlık’taki adımlara göre değerlendirilir.";
const std::string kResults = "Sonuçlar, bu kovi için kabul edilen Apple Sağlık kayıtlarıyla hesaplanır.";
const std::string kEqual = "Hedefi tutturanlar ödül havuzunu eşit paylaşır.";

// Two whole descriptions: the default anchored daily goal and a calendar total goal.
TEST(WalkingRuleDescription, DescribesTheRulesInTurkish) {
  Rules daily = testing::dailyGoal(7, 10000);
  const auto dailyText = WalkingRuleDescription::describe(daily, "tr");
  EXPECT_EQ(dailyText.title, "Her gün hedefi tamamla (10.000 adım)");
  EXPECT_EQ(dailyText.lines,
            (std::vector<std::string>{
                "Her gün hedefi tamamlaman gerekiyor (7 gün).", kSource,
                "Adımlar kovi’in başladığı andan itibaren sayılır; her gün o saatten başlayıp 24 saat sürer.",
                kResults,
                "Eksik veriler kovi bittikten sonra 24 saate kadar yeniden kontrol edilir; yine gelmezse başarısız "
                "sayılır.",
                kEqual, "Kovi başladıktan sonra ayrılmanın cezası yok."}));

  Rules total = daily;
  total.goalMode = Rules::GoalMode::total;
  total.stepTarget = 1250000;
  total.failurePolicy = Rules::FailurePolicy::closestWins;
  total.exitPenaltyBps = 10000;
  total.dayBoundary = WalkingDayBoundary::calendar;
  total.verificationWindowHours = 48;
  const auto totalText = WalkingRuleDescription::describe(total, "tr");
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
  struct Case {
    std::string name;
    std::function<void(Rules&)> edit;  // applied to a 7-day daily goal of 10000 steps
    std::string title;
    std::vector<std::string> lines;
  };
  auto race = [](Rules& r, Rules::RaceMode mode) {
    r.mode = Rules::Mode::race;
    r.goalMode.reset();
    r.raceMode = mode;
  };
  const std::vector<Case> cases{
      {"dailyFiveOfSevenAtMidnight",
       [](Rules& r) {
         r.requiredSuccessfulDays = 5;
         r.dayBoundary = WalkingDayBoundary::calendar;
         r.firstDay = Rules::FirstDay::midnight;
       },
       "Her gün hedefi tamamla (10.000 adım)",
       {"7 günlük kovi’te hedefi en az 5 gün tamamlaman gerekiyor.",
        "Adımlar kovi’in başlangıcından sonraki ilk gece yarısından itibaren sayılır."}},
      {"firstToTargetRanked",
       [&](Rules& r) {
         race(r, Rules::RaceMode::firstToTarget);
         r.stepTarget = 100000;
         r.payoutRule = Rules::PayoutRule::ranked;
         r.rankPayoutsBps = {6000, 3000, 1000};
         r.failurePolicy = Rules::FailurePolicy::rollover;
       },
       "100.000 adıma ilk ulaşan kazanır",
       {"Apple Sağlık kayıt saatine göre hedefe ilk ulaşan kazanır.",
        "Ödül sıralamaya göre paylaşılır: 1. %60, 2. %30, 3. %10.",
        "Kimse yarışı tamamlayamazsa havuz sonraki kovi için bekletilecek. Aktarım için aynı grubun yeni koşulları "
        "onaylaması gerekir."}},
      {"highestTotalWithMinimum",
       [&](Rules& r) {
         race(r, Rules::RaceMode::highestTotal);
         r.stepTarget.reset();
         r.minimumEligibility = 50000;
         r.failurePolicy = Rules::FailurePolicy::closestWins;
       },
       "7 günde en çok adım",
       {"Sıralamaya girmek için en az 50.000 adım gerekiyor.",
        "Kimse en az adım şartını sağlayamazsa en çok adım atan kazanacak; beraberlikte paylaşılacak."}},
      {"highestTotalWithoutMinimum",
       [&](Rules& r) {
         race(r, Rules::RaceMode::highestTotal);
         r.durationDays = 30;
         r.failurePolicy = Rules::FailurePolicy::refund;
       },
       "30 günde en çok adım",
       {"Süre bitince en çok adım atan kazanır.", "En çok adım atan kazanacak; beraberlikte paylaşılacak."}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    Rules rules = testing::dailyGoal(7, 10000);
    example.edit(rules);
    const auto description = WalkingRuleDescription::describe(rules, "tr");
    EXPECT_EQ(description.title, example.title);
    for (const std::string& line : example.lines) {
      EXPECT_NE(std::ranges::find(description.lines, line), description.lines.end()) << line;
    }
  }
}

TEST(WalkingRuleDescription, WritesAnOddExitPenaltyInTheChosenLocale) {
  struct Case {
    std::string locale;
    int basisPoints;
    std::string percentage;
  };
  for (const Case& example :
       {Case{"tr", 1250, "%12,5"}, Case{"en", 1250, "12.5%"}, Case{"de", 333, "3,33\u00A0%"}}) {
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
