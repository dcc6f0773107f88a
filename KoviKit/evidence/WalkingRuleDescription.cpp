#include "KoviKit/evidence/WalkingRuleDescription.h"

#include <unicode/unum.h>

#include <memory>

#include "KoviKit/foundation/IcuText.h"

namespace kovi {
namespace {

using Rules = WalkingKoviRules;

struct NumberFormatCloser {
  void operator()(UNumberFormat* format) const { unum_close(format); }
};
using NumberFormat = std::unique_ptr<UNumberFormat, NumberFormatCloser>;

// An ICU number formatter of `style` for `locale` (nullptr: the current one).
NumberFormat openFormat(UNumberFormatStyle style, const char* locale) {
  UErrorCode status = U_ZERO_ERROR;
  NumberFormat format(unum_open(style, nullptr, 0, locale, nullptr, &status));
  if (U_FAILURE(status)) return nullptr;
  return format;
}

std::string formatted(const NumberFormat& format, double value) {
  if (!format) return std::to_string(value);
  UChar text[64];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = unum_formatDouble(format.get(), value, text, 64, nullptr, &status);
  if (U_FAILURE(status)) return std::to_string(value);
  return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(length)));
}

// Whole numbers the Turkish way: 10.000.
std::string turkishNumber(std::int64_t value) {
  return formatted(openFormat(UNUM_DECIMAL, "tr"), static_cast<double>(value));
}

// A share in basis points as a percentage: 2500 → "%25" in Turkish, "25%" in English.
std::string percentage(int basisPoints, const char* locale) {
  NumberFormat format = openFormat(UNUM_PERCENT, locale);
  if (format) unum_setAttribute(format.get(), UNUM_MAX_FRACTION_DIGITS, 2);
  return formatted(format, basisPoints / 10000.0);
}

std::string titleOf(const Rules& rules) {
  if (!rules.stepTarget) {
    return rules.isRace(Rules::RaceMode::highestTotal) ? turkishNumber(rules.durationDays) + " günde en çok adım" : "";
  }
  const std::string target = turkishNumber(*rules.stepTarget);
  if (rules.isDailyGoal()) return "Her gün hedefi tamamla (" + target + " adım)";
  if (rules.isTotalGoal()) return "Kovi boyunca toplam " + target + " adım";
  if (rules.isRace(Rules::RaceMode::firstToTarget)) return target + " adıma ilk ulaşan kazanır";
  if (rules.isRace(Rules::RaceMode::highestTotal)) return turkishNumber(rules.durationDays) + " günde en çok adım";
  return "";
}

std::vector<std::string> goalLines(const Rules& rules) {
  const std::string days = turkishNumber(rules.durationDays);
  if (rules.isDailyGoal()) {
    if (rules.requiredSuccessfulDays && *rules.requiredSuccessfulDays < rules.durationDays) {
      return {days + " günlük kovi’te hedefi en az " + turkishNumber(*rules.requiredSuccessfulDays) +
              " gün tamamlaman gerekiyor."};
    }
    return {"Her gün hedefi tamamlaman gerekiyor (" + days + " gün)."};
  }
  if (rules.isTotalGoal()) return {"Günler tek tek değil, kovi sonundaki toplam değerlendirilir."};
  if (rules.isRace(Rules::RaceMode::firstToTarget)) {
    return {days + " gün içinde hedefe ilk ulaşan kazanır.",
            "Apple Sağlık kayıt saatine göre hedefe ilk ulaşan kazanır."};
  }
  if (rules.isRace(Rules::RaceMode::highestTotal)) {
    if (!rules.minimumEligibility) return {"Süre bitince en çok adım atan kazanır."};
    const std::string minimum = turkishNumber(*rules.minimumEligibility);
    return {"Süre bitince en az " + minimum + " adım atanlar arasında en çok adım atan kazanır.",
            "Sıralamaya girmek için en az " + minimum + " adım gerekiyor."};
  }
  return {};
}

std::string dayBoundaryLine(const Rules& rules) {
  if (rules.effectiveDayBoundary() == WalkingDayBoundary::anchored) {
    return "Adımlar kovi’in başladığı andan itibaren sayılır; her gün o saatten başlayıp 24 saat sürer.";
  }
  if (rules.effectiveFirstDay() == Rules::FirstDay::midnight) {
    return "Adımlar kovi’in başlangıcından sonraki ilk gece yarısından itibaren sayılır.";
  }
  return "Kovi’in başladığı gündeki adımların tamamı sayılır.";
}

std::string verificationLine(const Rules& rules) {
  return "Eksik veriler kovi bittikten sonra " + turkishNumber(rules.verificationWindowHours) +
         " saate kadar yeniden kontrol edilir; yine gelmezse başarısız sayılır.";
}

std::string payoutLine(const Rules& rules) {
  if (rules.payoutRule == Rules::PayoutRule::equalSuccessful) return "Hedefi tutturanlar ödül havuzunu eşit paylaşır.";
  if (!rules.rankPayoutsBps.empty() && rules.rankPayoutsBps.front() == 10000) {
    return "Ödülün tamamını birinci gelen alır.";
  }
  std::string line = "Ödül sıralamaya göre paylaşılır:";
  for (std::size_t rank = 0; rank < rules.rankPayoutsBps.size(); ++rank) {
    line += rank == 0 ? " " : ", ";
    line += std::to_string(rank + 1) + ". " + percentage(rules.rankPayoutsBps[rank], "tr");
  }
  return line + ".";
}

// What happens when nobody succeeds, or "" when the rules say nothing.
std::string failureLine(const Rules& rules) {
  const bool highestTotal = rules.isRace(Rules::RaceMode::highestTotal);
  if (highestTotal && !rules.minimumEligibility) return "En çok adım atan kazanacak; beraberlikte paylaşılacak.";
  if (!rules.failurePolicy) return "";
  const std::string leadIn = rules.mode == Rules::Mode::goal ? "Kimse hedefi tamamlayamazsa"
                             : highestTotal                  ? "Kimse en az adım şartını sağlayamazsa"
                                                             : "Kimse yarışı tamamlayamazsa";
  switch (*rules.failurePolicy) {
    case Rules::FailurePolicy::refund: return leadIn + " katkılar kalan katılımcılara iade edilecek.";
    case Rules::FailurePolicy::rollover:
      return leadIn + " havuz sonraki kovi için bekletilecek. Aktarım için aynı grubun yeni koşulları onaylaması "
                      "gerekir.";
    case Rules::FailurePolicy::closestWins:
      return leadIn + (rules.mode == Rules::Mode::goal ? " hedefe en yakın olan kazanacak; beraberlikte paylaşılacak."
                                                       : " en çok adım atan kazanacak; beraberlikte paylaşılacak.");
  }
  return "";
}

std::string exitPenaltyLine(int basisPoints, std::string_view percentLocale) {
  switch (basisPoints) {
    case 10000: return "Kovi başladıktan sonra ayrılırsan katkının tamamı ödül havuzunda kalacak.";
    case 5000: return "Kovi başladıktan sonra ayrılırsan katkının %50’si ödül havuzunda kalacak.";
    case 2500: return "Kovi başladıktan sonra ayrılırsan katkının %25’i ödül havuzunda kalacak.";
    case 1000: return "Kovi başladıktan sonra ayrılırsan katkının %10’u ödül havuzunda kalacak.";
    case 0: return "Kovi başladıktan sonra ayrılmanın cezası yok.";
    default: break;
  }
  const std::string locale(percentLocale);
  return "Kovi başladıktan sonra ayrılırsan katkının " +
         percentage(basisPoints, locale.empty() ? nullptr : locale.c_str()) + " kadarı ödül havuzunda kalacak.";
}

}  // namespace

WalkingRuleDescription WalkingRuleDescription::describe(const WalkingKoviRules& rules, std::string_view percentLocale) {
  WalkingRuleDescription description;
  description.title = titleOf(rules);
  auto add = [&](std::string line) {
    if (!line.empty()) description.lines.push_back(std::move(line));
  };
  for (std::string& line : goalLines(rules)) add(std::move(line));
  add("Apple Sağlık’taki adımlara göre değerlendirilir.");
  add(dayBoundaryLine(rules));
  add("Sonuçlar, bu kovi için kabul edilen Apple Sağlık kayıtlarıyla hesaplanır.");
  add(verificationLine(rules));
  add(payoutLine(rules));
  add(failureLine(rules));
  add(exitPenaltyLine(rules.exitPenaltyBps, percentLocale));
  return description;
}

}  // namespace kovi
