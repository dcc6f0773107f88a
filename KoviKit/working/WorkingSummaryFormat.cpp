#include "KoviKit/working/WorkingSummaryFormat.h"

#include <unicode/udat.h>
#include <unicode/unum.h>

#include <array>
#include <memory>

#include "KoviKit/foundation/IcuText.h"

namespace kovi {
namespace {

struct NumberFormatCloser {
  void operator()(UNumberFormat* format) const { unum_close(format); }
};
using NumberFormat = std::unique_ptr<UNumberFormat, NumberFormatCloser>;

struct DateFormatCloser {
  void operator()(UDateFormat* format) const { udat_close(format); }
};
using DateFormat = std::unique_ptr<UDateFormat, DateFormatCloser>;

NumberFormat openNumberFormat(UNumberFormatStyle style, WorkingSummaryLanguage language) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string locale(workingSummaryLocale(language));
  NumberFormat format(unum_open(style, nullptr, 0, locale.c_str(), nullptr, &status));
  if (U_FAILURE(status)) return nullptr;
  return format;
}

// ICU writes into a caller's buffer; 64 UTF-16 units hold any number or date
// written here, and a longer result is reported as an error.
template <class Write>
std::string writeUtf16(Write write) {
  std::array<UChar, 64> buffer{};
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = write(buffer.data(), static_cast<int32_t>(buffer.size()), &status);
  if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) return {};
  return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(buffer.data()), static_cast<std::size_t>(length)));
}

constexpr WorkingSummaryText kHourUnit{"saat", "h", "h"};
constexpr WorkingSummaryText kMinuteUnit{"dakika", "min", "min"};
constexpr WorkingSummaryText kSecondUnit{"saniye", "s", "s"};

}  // namespace

std::optional<WorkingSummaryLanguage> workingSummaryLanguage(std::string_view code) {
  if (code == "tr") return WorkingSummaryLanguage::turkish;
  if (code == "en") return WorkingSummaryLanguage::english;
  if (code == "fr") return WorkingSummaryLanguage::french;
  return std::nullopt;
}

std::string_view workingSummaryLocale(WorkingSummaryLanguage language) {
  switch (language) {
    case WorkingSummaryLanguage::english: return "en";
    case WorkingSummaryLanguage::french: return "fr";
    case WorkingSummaryLanguage::turkish: break;
  }
  return "tr";
}

std::string formatWorkingCount(std::int64_t count, WorkingSummaryLanguage language) {
  const NumberFormat format = openNumberFormat(UNUM_DECIMAL, language);
  if (!format) return std::to_string(count);
  return writeUtf16([&](UChar* buffer, int32_t capacity, UErrorCode* status) {
    return unum_formatInt64(format.get(), count, buffer, capacity, nullptr, status);
  });
}

std::string formatWorkingPercent(std::int64_t basisPoints, WorkingSummaryLanguage language) {
  const NumberFormat format = openNumberFormat(UNUM_PERCENT, language);
  if (!format) return std::to_string(basisPoints) + " bps";
  unum_setAttribute(format.get(), UNUM_MAX_FRACTION_DIGITS, 2);
  return writeUtf16([&](UChar* buffer, int32_t capacity, UErrorCode* status) {
    return unum_formatDouble(format.get(), static_cast<double>(basisPoints) / 10000.0, buffer, capacity, nullptr,
                             status);
  });
}

std::string formatWorkingDuration(std::int64_t seconds, WorkingSummaryLanguage language) {
  const std::int64_t hours = seconds / 3600;
  const std::int64_t minutes = seconds % 3600 / 60;
  const std::int64_t rest = seconds % 60;
  std::string text;
  auto append = [&](std::int64_t amount, const WorkingSummaryText& unit) {
    if (!text.empty()) text += ' ';
    text += formatWorkingCount(amount, language);
    text += ' ';
    text += unit.in(language);
  };
  if (hours != 0) append(hours, kHourUnit);
  if (minutes != 0) append(minutes, kMinuteUnit);
  if (rest != 0) append(rest, kSecondUnit);
  if (text.empty()) append(0, kMinuteUnit);
  return text;
}

std::string formatWorkingInstant(std::int64_t unixMillis, std::string_view zoneID, WorkingSummaryLanguage language) {
  const std::u16string zone = toUtf16(zoneID);
  const std::string locale(workingSummaryLocale(language));
  UErrorCode status = U_ZERO_ERROR;
  const DateFormat format(udat_open(UDAT_SHORT, UDAT_MEDIUM, locale.c_str(), reinterpret_cast<const UChar*>(zone.data()),
                                    static_cast<int32_t>(zone.size()), nullptr, 0, &status));
  if (U_FAILURE(status)) return std::to_string(unixMillis);
  return writeUtf16([&](UChar* buffer, int32_t capacity, UErrorCode* formatStatus) {
    return udat_format(format.get(), static_cast<UDate>(unixMillis), buffer, capacity, nullptr, formatStatus);
  });
}

}  // namespace kovi
