#include "KoviKit/foundation/IcuText.h"

#include <unicode/ustring.h>

namespace kovi {

std::u16string toUtf16(std::string_view utf8) {
  std::u16string out(utf8.size(), u'\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()), &length,
                utf8.data(), static_cast<int32_t>(utf8.size()), &status);
  if (U_FAILURE(status)) return {};
  out.resize(static_cast<std::size_t>(length));
  return out;
}

std::u16string toUtf16Replacing(std::string_view utf8) {
  // A replaced byte takes one UTF-16 unit, so the UTF-8 length is enough.
  std::u16string out(utf8.size(), u'\0');
  int32_t length = 0;
  int32_t replaced = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()), &length, utf8.data(),
                       static_cast<int32_t>(utf8.size()), 0xFFFD, &replaced, &status);
  if (U_FAILURE(status)) return {};
  out.resize(static_cast<std::size_t>(length));
  return out;
}

std::string toUtf8(std::u16string_view utf16) {
  std::string out(utf16.size() * 3, '\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8(out.data(), static_cast<int32_t>(out.size()), &length,
              reinterpret_cast<const UChar*>(utf16.data()), static_cast<int32_t>(utf16.size()), &status);
  if (U_FAILURE(status)) return {};
  out.resize(static_cast<std::size_t>(length));
  return out;
}

}  // namespace kovi
