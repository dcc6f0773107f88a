#include "KoviKit/wallet/V6WalletStake.h"

#include <algorithm>

namespace kovi {
namespace {

constexpr std::size_t kMaximumWholeDigits = 6;
constexpr std::size_t kMaximumFractionDigits = 18;

bool allDigits(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

// Checked by hand rather than with a regular expression: the text may be
// anything a person pasted, and each way it fails has its own reason.
std::optional<std::string> V6StakeForm::refusal(std::string_view text) {
  if (text.empty()) return "the stake is empty";
  const std::size_t point = text.find('.');
  const std::string_view whole = text.substr(0, point);
  const std::string_view fraction = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  if (whole.empty() || !allDigits(whole) || !allDigits(fraction)) {
    return "the stake must be a plain decimal number such as 12 or 0.5";
  }
  if (whole.size() > 1 && whole.front() == '0') return "the whole part has a leading zero";
  if (whole.size() > kMaximumWholeDigits) return "the stake must be below 1000000";
  if (point != std::string_view::npos && fraction.empty()) return "a decimal point must be followed by digits";
  if (fraction.size() > kMaximumFractionDigits) return "at most 18 decimal places";
  return std::nullopt;
}

}  // namespace kovi
