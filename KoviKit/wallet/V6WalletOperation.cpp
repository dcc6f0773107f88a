#include "KoviKit/wallet/V6WalletOperation.h"

namespace kovi {

bool isOpen(V6WalletOperationStatus status) {
  switch (status) {
    case V6WalletOperationStatus::prepared:
    case V6WalletOperationStatus::approved:
    case V6WalletOperationStatus::submitted:
    case V6WalletOperationStatus::unreconciled: return true;
    case V6WalletOperationStatus::confirmed:
    case V6WalletOperationStatus::reverted:
    case V6WalletOperationStatus::replaced:
    case V6WalletOperationStatus::expired:
    case V6WalletOperationStatus::cancelled:
    case V6WalletOperationStatus::failed: return false;
  }
  return false;
}

}  // namespace kovi
