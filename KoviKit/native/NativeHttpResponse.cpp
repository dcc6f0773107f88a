#include "KoviKit/native/NativeHttpResponse.h"

#include <algorithm>
#include <cctype>

namespace kovi {
namespace {

bool equalIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

std::optional<std::string_view> NativeHttpResponse::header(std::string_view name) const {
  const auto found =
      std::ranges::find_if(headers, [&](const NativeHttpHeader& entry) { return equalIgnoringAsciiCase(entry.name, name); });
  if (found == headers.end()) return std::nullopt;
  return found->value;
}

std::string_view trimmedHeaderValue(std::string_view value) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const auto first = value.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return value.substr(first, value.find_last_not_of(kWhiteSpace) - first + 1);
}

}  // namespace kovi
