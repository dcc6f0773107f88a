#include "KoviKit/wallet/V6InviteCode.h"

#include <unicode/regex.h>

#include <algorithm>
#include <memory>

#include "KoviKit/foundation/IcuText.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

// The look-behind and look-ahead keep a code from being taken out of a longer
// token; std::regex has no look-behind, hence ICU.
constexpr char16_t kFindPattern[] =
    u"(?<![A-Z0-9%_-])KOVI-?[2-9A-HJ-NP-Z]{4}-?[2-9A-HJ-NP-Z]{4}(?![A-Z0-9%_-])";

// Compiled once; a RegexPattern is immutable and may be shared by threads,
// each call makes its own matcher.
const icu::RegexPattern& findPattern() {
  static const std::unique_ptr<icu::RegexPattern> pattern = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(icu::UnicodeString(kFindPattern), 0, status));
    if (U_FAILURE(status) || !compiled) trap("ICU could not compile the invite code pattern");
    return compiled;
  }();
  return *pattern;
}

// The text with its ASCII letters in upper case and nothing else changed: a
// code is ASCII, and folding other letters could make one out of look-alikes
// ("ſ" upper-cases to "S", "ﬀ" to "FF"). Ill-formed bytes become U+FFFD, which
// neither belongs to a code nor hides one next to it.
std::u16string asciiUpper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return toUtf16Replacing(upper);
}

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// The last non-empty path segment of a link ("https://host/k/KOVI-X?x=1" →
// "KOVI-X"), or the text itself when it is not a link.
std::string_view lastPathSegment(std::string_view text) {
  const auto scheme = text.find("://");
  if (scheme == std::string_view::npos) return text;
  std::string_view rest = text.substr(scheme + 3);
  rest = rest.substr(0, rest.find_first_of("?#"));
  const auto pathStart = rest.find('/');
  if (pathStart == std::string_view::npos) return {};
  std::string_view path = rest.substr(pathStart);
  while (!path.empty() && path.back() == '/') path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

std::string V6InviteCode::written() const {
  return std::string(kPrefix) + "-" + body.substr(0, 4) + "-" + body.substr(4);
}

bool V6InviteCode::isBody(std::string_view text) {
  return text.size() == kBodyLength &&
         std::ranges::all_of(text, [](char c) { return kAlphabet.find(c) != std::string_view::npos; });
}

std::optional<V6InviteCode> V6InviteCode::find(std::string_view text) {
  const std::u16string upper = asciiUpper(text);
  if (upper.empty()) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input(false, reinterpret_cast<const UChar*>(upper.data()),
                                 static_cast<int32_t>(upper.size()));
  std::unique_ptr<icu::RegexMatcher> matcher(findPattern().matcher(input, status));
  if (U_FAILURE(status) || !matcher || !matcher->find(status) || U_FAILURE(status)) return std::nullopt;
  std::string match;
  matcher->group(status).toUTF8String(match);
  if (U_FAILURE(status)) return std::nullopt;
  std::erase(match, '-');
  return V6InviteCode{match.substr(kPrefix.size())};
}

bool isKoviReference(std::string_view text) {
  static constexpr std::string_view prefix = "KOVI-";
  if (!text.starts_with(prefix)) return false;
  const std::string_view rest = text.substr(prefix.size());
  return rest.size() >= 4 && rest.size() <= 120 && std::ranges::all_of(rest, [](char c) {
           return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
         });
}

std::expected<V6InviteTarget, V6InviteError> recognizeInvite(std::string_view text) {
  if (auto code = V6InviteCode::find(text)) return *code;
  const std::string_view candidate = lastPathSegment(trimmed(text));
  if (isKoviReference(candidate)) return std::string(candidate);
  return std::unexpected(V6InviteError{std::string(inviteErrorCode::codeUnrecognized)});
}

}  // namespace kovi
