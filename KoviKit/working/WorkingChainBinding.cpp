#include "KoviKit/working/WorkingChainBinding.h"

#include <regex>

namespace kovi {

bool isWorkingChainBinding(std::string_view text) {
  // The longest binding is 2 + 40 + 1 + 31 bytes; anything longer is refused
  // before the pattern runs.
  constexpr std::size_t kLongest = 74;
  if (text.size() > kLongest) return false;
  static const std::regex pattern("^0x[0-9a-f]{40}:[1-9][0-9]{0,30}$");
  return std::regex_match(text.begin(), text.end(), pattern);
}

}  // namespace kovi
