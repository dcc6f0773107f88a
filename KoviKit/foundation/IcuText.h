#pragma once

#include <string>
#include <string_view>

namespace kovi {

// Conversions between the UTF-8 used everywhere in Kovi and the UTF-16 that
// ICU's C API takes. Ill-formed UTF-8 converts to an empty string.
std::u16string toUtf16(std::string_view utf8);
// The same, but each ill-formed byte sequence becomes U+FFFD, so one bad
// byte does not cost the rest of a pasted text.
std::u16string toUtf16Replacing(std::string_view utf8);
std::string toUtf8(std::u16string_view utf16);

}  // namespace kovi
