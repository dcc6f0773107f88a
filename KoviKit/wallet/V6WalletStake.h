#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/wallet/V6WalletJson.h"

namespace kovi {

// A stake: a decimal token amount below one million with at most 18 decimal
// places, written without a leading zero, sign, exponent or dangling point
// ("0", "0.5", "999999.000000000000000001"; not "01", "1.", "1000000").
struct V6StakeForm {
  // Absent for a well-formed stake, else why it is not one.
  static std::optional<std::string> refusal(std::string_view text);
};

using V6StakeAmount = V6FormedString<V6StakeForm>;

}  // namespace kovi
