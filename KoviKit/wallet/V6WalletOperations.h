#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "KoviKit/attest/PasskeyService.h"
#include "KoviKit/wallet/V6WalletAPI.h"
#include "KoviKit/wallet/V6WalletOperationStore.h"
#include "KoviKit/wallet/WalletOperationCeremony.h"

namespace kovi {

struct V6WalletOperationsOptions {
  // The member whose operations these are; names their store file.
  std::string member;
  std::optional<std::string> token;
  // The passkey to approve with; the only one there is when absent.
  std::optional<std::string> passkeyCredentialId;
  WalletCeremonySettings ceremony;
};

// A member's wallet operations on this device: the ceremony over the wallet
// service and the passkey, with the member's open operation kept in the
// store after every step. While an operation is open no new one starts,
// and the passkey is not even asked.
class V6WalletOperations {
 public:
  V6WalletOperations(V6WalletAPI& api, V6WalletOperationStore& store, PasskeyService& passkeys,
                     V6WalletOperationsOptions options);

  // Prepares, approves, submits and observes a new operation for `intent`.
  // Refused with `wallet_action_blocked_by_pending_operation`'s text while the
  // member's last operation is open.
  WalletCeremonyOutcome start(const V6WalletIntent& intent);

  // Reads the member's last operation from the service again; never signs,
  // submits or starts anything. None when the member has no operation here.
  std::optional<WalletCeremonyOutcome> checkStatus();

  // Sends the member's approved operation again under its own request id
  // (after an answer to a submission was lost) and observes it; the service
  // makes no second contribution of it.
  WalletCeremonyOutcome resubmit();

  // Asks the service to drop the member's prepared operation (one the member
  // chose not to approve), so it no longer holds the member back. Anything
  // past preparation can no longer be cancelled and is refused unsent.
  WalletCeremonyOutcome cancel();

 private:
  WalletOperationCeremony ceremony();
  WalletStepResult<V6WalletOperation> kept(std::expected<V6WalletOperation, NativeAccountError> answer);
  WalletStepFailure failureOf(const NativeAccountError& error) const;

  V6WalletAPI& api_;
  V6WalletOperationStore& store_;
  PasskeyService& passkeys_;
  V6WalletOperationsOptions options_;
};

}  // namespace kovi
