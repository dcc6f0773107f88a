#include "KoviKit/native/NativeRetryAfter.h"

#include <unicode/udat.h>

#include <charconv>
#include <cmath>
#include <memory>

#include "KoviKit/foundation/IcuText.h"
#include "KoviKit/native/NativeHttpResponse.h"

namespace kovi {
namespace {

std::optional<std::int64_t> parseSeconds(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  // from_chars would take a "-" itself; only digits may follow the "+".
  if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;
  std::int64_t seconds = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return seconds;
}

struct DateFormatCloser {
  void operator()(UDateFormat* format) const { udat_close(format); }
};

// The instant an HTTP date names, in Unix milliseconds. A formatter is
// opened per call: dates in Retry-After come only with rate limits, and a
// private formatter needs no lock.
std::optional<double> parseHttpDate(std::string_view text) {
  static const std::u16string kPattern = u"EEE, dd MMM yyyy HH:mm:ss zzz";
  static const std::u16string kZone = u"GMT";
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UDateFormat, DateFormatCloser> format(
      udat_open(UDAT_PATTERN, UDAT_PATTERN, "en_US_POSIX", reinterpret_cast<const UChar*>(kZone.data()),
                static_cast<int32_t>(kZone.size()), reinterpret_cast<const UChar*>(kPattern.data()),
                static_cast<int32_t>(kPattern.size()), &status));
  if (U_FAILURE(status)) return std::nullopt;
  udat_setLenient(format.get(), false);

  const std::u16string date = toUtf16(text);
  if (date.empty()) return std::nullopt;
  int32_t position = 0;
  const UDate millis = udat_parse(format.get(), reinterpret_cast<const UChar*>(date.data()),
                                  static_cast<int32_t>(date.size()), &position, &status);
  // The whole value must be the date: "… GMT, later" is not a date.
  if (U_FAILURE(status) || position != static_cast<int32_t>(date.size()) || !std::isfinite(millis)) {
    return std::nullopt;
  }
  return millis;
}

std::optional<std::int64_t> secondsUntil(double millis, UnixMillis now) {
  const double seconds = std::ceil((millis - static_cast<double>(now)) / 1000.0);
  // ±2^62 s is far beyond any date ICU parses; the bound only keeps the
  // conversion defined.
  constexpr double kBound = 4.6e18;
  if (!(seconds > -kBound && seconds < kBound)) return std::nullopt;
  return static_cast<std::int64_t>(seconds);
}

}  // namespace

std::optional<std::int64_t> parseRetryAfter(std::string_view value, UnixMillis now) {
  const std::string_view text = trimmedHeaderValue(value);
  if (text.empty()) return std::nullopt;
  if (auto seconds = parseSeconds(text)) return seconds;
  const auto millis = parseHttpDate(text);
  if (!millis) return std::nullopt;
  return secondsUntil(*millis, now);
}

}  // namespace kovi
