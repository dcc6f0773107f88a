#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/wallet/V6WalletOperation.h"

namespace kovi {

// How a list of operations shows one.
struct V6OperationPresentation {
  enum class State {
    awaitingApproval,  // prepared, the member's passkey is asked
    pending,           // approved, submitted or unreconciled: money may still move
    completed,         // confirmed
    failed,            // reverted on chain, or failed
    closed,            // replaced, expired or cancelled: nothing happened
    unknown,           // no operation is known here
  };

  static State state(const std::optional<V6WalletOperation>& operation);
};

template <>
struct EnumNames<V6OperationPresentation::State> {
  using State = V6OperationPresentation::State;
  static constexpr std::array table{
      std::pair{State::awaitingApproval, std::string_view("awaitingApproval")},
      std::pair{State::pending, std::string_view("pending")},
      std::pair{State::completed, std::string_view("completed")},
      std::pair{State::failed, std::string_view("failed")},
      std::pair{State::closed, std::string_view("closed")},
      std::pair{State::unknown, std::string_view("unknown")},
  };
};

}  // namespace kovi
