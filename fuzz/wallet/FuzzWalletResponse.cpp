// A wallet service answer is whatever came over the network. Decoding must
// answer without crashing; an operation it takes must survive the store's
// round trip unchanged (what the passkey signs is what was decoded); and the
// stake check, fed the same bytes, must agree with the stake pattern.
#include <cstddef>
#include <cstdint>
#include <regex>
#include <string_view>

#include "KoviKit/wallet/V6WalletResponse.h"
#include "KoviKit/wallet/V6WalletStake.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  // Short inputs only: std::regex recurses per character.
  if (size <= 64) {
    static const std::regex kStake(R"(^(0|[1-9][0-9]{0,5})(\.[0-9]{1,18})?$)");
    const bool matches = std::regex_match(text.begin(), text.end(), kStake);
    if (matches != !kovi::V6StakeForm::refusal(text).has_value()) __builtin_trap();
  }

  const auto response = kovi::decodeJsonText<kovi::V6WalletResponse>(text);
  if (!response) return 0;
  std::vector<kovi::V6WalletOperation> operations = response->operations.value_or(std::vector<kovi::V6WalletOperation>{});
  if (response->operation) operations.push_back(*response->operation);
  for (const auto& operation : operations) {
    const auto again = kovi::decodeJsonText<kovi::V6WalletOperation>(kovi::encodeRecord(operation).dump());
    if (!again || !(*again == operation)) __builtin_trap();
  }
  return 0;
}
