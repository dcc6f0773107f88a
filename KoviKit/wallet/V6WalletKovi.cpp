#include "KoviKit/wallet/V6WalletKovi.h"

#include <algorithm>

namespace kovi {

std::optional<std::string> V6KoviIdForm::refusal(std::string_view text) {
  constexpr std::size_t kMaximumDigits = 78;
  const bool digits = std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
  if (text.empty() || !digits || text.front() == '0' || text.size() > kMaximumDigits) {
    return "expected a positive decimal number of at most 78 digits without leading zeros";
  }
  return std::nullopt;
}

}  // namespace kovi
