#include "KoviKit/wallet/V6OperationPresentation.h"

namespace kovi {

V6OperationPresentation::State V6OperationPresentation::state(const std::optional<V6WalletOperation>& operation) {
  if (!operation) return State::unknown;
  switch (operation->status) {
    case V6WalletOperationStatus::prepared: return State::awaitingApproval;
    case V6WalletOperationStatus::approved:
    case V6WalletOperationStatus::submitted:
    case V6WalletOperationStatus::unreconciled: return State::pending;
    case V6WalletOperationStatus::confirmed: return State::completed;
    case V6WalletOperationStatus::reverted:
    case V6WalletOperationStatus::failed: return State::failed;
    case V6WalletOperationStatus::replaced:
    case V6WalletOperationStatus::expired:
    case V6WalletOperationStatus::cancelled: return State::closed;
  }
  return State::unknown;
}

}  // namespace kovi
