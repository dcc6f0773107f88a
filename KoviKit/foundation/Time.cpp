#include "KoviKit/foundation/Time.h"

#include <unicode/udat.h>

#include <array>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>

#include "KoviKit/foundation/IcuText.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {

Date Date::now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return fromUnixMillis(std::chrono::duration<double, std::milli>(sinceEpoch).count());
}

UnixMillis Date::unixMillis() const {
  constexpr double limit = 9.2e18;  // inside int64 with room for the cast
  if (!std::isfinite(millis_) || std::fabs(millis_) > limit) trap("non-finite or out-of-range instant");
  return static_cast<UnixMillis>(std::trunc(millis_));
}

namespace {

struct DateFormatCloser {
  void operator()(UDateFormat* format) const { udat_close(format); }
};
using DateFormatHandle = std::unique_ptr<UDateFormat, DateFormatCloser>;

// Strict, locale-independent parse of one ISO 8601 shape; the whole text must match.
std::optional<UnixMillis> parseWithPattern(const std::u16string& text, std::u16string_view pattern) {
  UErrorCode status = U_ZERO_ERROR;
  DateFormatHandle format(udat_open(UDAT_PATTERN, UDAT_PATTERN, "en_US_POSIX", u"UTC", -1,
                                    reinterpret_cast<const UChar*>(pattern.data()),
                                    static_cast<int32_t>(pattern.size()), &status));
  if (U_FAILURE(status)) return std::nullopt;
  udat_setLenient(format.get(), false);
  int32_t position = 0;
  const UDate parsed = udat_parse(format.get(), reinterpret_cast<const UChar*>(text.data()),
                                  static_cast<int32_t>(text.size()), &position, &status);
  if (U_FAILURE(status) || position != static_cast<int32_t>(text.size())) return std::nullopt;
  return static_cast<UnixMillis>(std::llround(parsed));
}

}  // namespace

std::optional<UnixMillis> parseInstant(std::string_view text) {
  static constexpr std::array<std::u16string_view, 3> patterns = {
      u"yyyy-MM-dd'T'HH:mm:ss.SSSXXX",
      u"yyyy-MM-dd'T'HH:mm:ssXXX",
      u"yyyy-MM-dd'T'HH:mmXXX",
  };
  const std::u16string wide = toUtf16(text);
  if (wide.empty()) return std::nullopt;
  for (const auto pattern : patterns) {
    if (auto parsed = parseWithPattern(wide, pattern)) return parsed;
  }
  return std::nullopt;
}

}  // namespace kovi
