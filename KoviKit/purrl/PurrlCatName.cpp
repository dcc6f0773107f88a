#include "KoviKit/purrl/PurrlCatName.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <memory>

#include "KoviKit/foundation/IcuText.h"

namespace kovi {
namespace {

constexpr UChar32 kZeroWidthJoiner = 0x200D;

bool isDropped(UChar32 scalar) {
  switch (u_charType(scalar)) {
    case U_CONTROL_CHAR:
    case U_PRIVATE_USE_CHAR:
    case U_SURROGATE:
    case U_UNASSIGNED: return true;
    case U_FORMAT_CHAR: return scalar != kZeroWidthJoiner;
    default: return false;
  }
}

// Drops what a name must not carry and folds white space, scalar by scalar.
std::u16string cleanedScalars(std::string_view typed) {
  std::u16string cleaned;
  bool pendingSpace = false;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(typed.data());
  const auto length = static_cast<int32_t>(typed.size());
  for (int32_t index = 0; index < length;) {
    UChar32 scalar = 0;
    U8_NEXT(bytes, index, length, scalar);
    if (scalar < 0) continue;  // ill-formed bytes
    if (u_isUWhiteSpace(scalar)) {
      pendingSpace = !cleaned.empty();
      continue;
    }
    if (isDropped(scalar)) continue;
    if (pendingSpace) cleaned.push_back(u' ');
    pendingSpace = false;
    if (U_IS_BMP(scalar)) {
      cleaned.push_back(static_cast<char16_t>(scalar));
    } else {
      cleaned.push_back(U16_LEAD(scalar));
      cleaned.push_back(U16_TRAIL(scalar));
    }
  }
  return cleaned;
}

std::u16string normalFormC(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  if (U_FAILURE(status)) return text;
  std::u16string normalized(text.size() * 3 + 1, u'\0');
  const int32_t length =
      unorm2_normalize(nfc, reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size()),
                       reinterpret_cast<UChar*>(normalized.data()), static_cast<int32_t>(normalized.size()), &status);
  if (U_FAILURE(status)) return text;
  normalized.resize(static_cast<std::size_t>(length));
  return normalized;
}

struct BreakIteratorCloser {
  void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

// `text` cut after `limit` grapheme clusters.
std::u16string firstCharacters(const std::u16string& text, int limit) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UBreakIterator, BreakIteratorCloser> characters(
      ubrk_open(UBRK_CHARACTER, "", reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size()),
                &status));
  if (U_FAILURE(status)) return text;
  ubrk_first(characters.get());
  int32_t end = 0;
  for (int count = 0; count < limit; ++count) {
    const int32_t next = ubrk_next(characters.get());
    if (next == UBRK_DONE) return text;
    end = next;
  }
  return text.substr(0, static_cast<std::size_t>(end));
}

bool hasLetterNumberOrSymbol(const std::u16string& text) {
  constexpr auto kNameMask = U_GC_L_MASK | U_GC_N_MASK | U_GC_S_MASK;
  for (std::size_t index = 0; index < text.size();) {
    UChar32 scalar = 0;
    U16_NEXT(text.data(), index, text.size(), scalar);
    if ((U_GET_GC_MASK(scalar) & kNameMask) != 0) return true;
  }
  return false;
}

}  // namespace

std::optional<std::string> normalizedPurrlCatName(std::string_view typed) {
  std::u16string name = firstCharacters(normalFormC(cleanedScalars(typed)), kPurrlCatNameMaxCharacters);
  // Cutting can leave the space that stood before the next word.
  if (!name.empty() && name.back() == u' ') name.pop_back();
  if (!hasLetterNumberOrSymbol(name)) return std::nullopt;
  return toUtf8(name);
}

}  // namespace kovi
