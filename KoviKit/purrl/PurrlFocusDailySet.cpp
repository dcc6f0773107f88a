#include "KoviKit/purrl/PurrlFocusDailySet.h"

#include <unicode/ustring.h>

#include "KoviKit/foundation/IcuText.h"

namespace kovi {
namespace {

std::string lowercased(const std::string& text) {
  const std::u16string wide = toUtf16(text);
  std::u16string lower(wide.size() * 3 + 1, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length =
      u_strToLower(reinterpret_cast<UChar*>(lower.data()), static_cast<int32_t>(lower.size()),
                   reinterpret_cast<const UChar*>(wide.data()), static_cast<int32_t>(wide.size()), "", &status);
  if (U_FAILURE(status)) return text;
  lower.resize(static_cast<std::size_t>(length));
  return toUtf8(lower);
}

}  // namespace

std::string PurrlFocusDailySet::identity() const {
  if (subject != enumName(PurrlFocusSubject::custom)) return subject;
  return "custom:" + (label ? lowercased(*label) : std::string());
}

std::optional<PurrlFocusDailySetTarget> PurrlFocusDailySet::asTarget() const {
  const auto parsed = enumFromName<PurrlFocusSubject>(subject);
  if (!parsed) return std::nullopt;
  return PurrlFocusDailySetTarget{*parsed, label, target};
}

}  // namespace kovi
