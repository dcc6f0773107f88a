#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <optional>
#include <string>

#include "KoviKit/wallet/V6WalletIntent.h"
#include "KoviKit/wallet/V6WalletJson.h"
#include "KoviKit/wallet/V6WalletOperation.h"
#include "KoviKit/wallet/WalletCeremonyPhase.h"

namespace kovi {

// Why a step of the ceremony did not give an operation back.
struct WalletStepFailure {
  enum class Kind {
    refused,   // the service answered with its code
    lost,      // no usable answer: the step may or may not have happened
    declined,  // the member stopped at the passkey prompt
    broken,    // this device could not do its part (passkey, store)
  };

  Kind kind = Kind::lost;
  std::string code;     // the service's code for `refused`
  std::string message;  // the member's text
  bool operator==(const WalletStepFailure&) const = default;
};

template <class T>
using WalletStepResult = std::expected<T, WalletStepFailure>;

// Where a ceremony ended: its last phase and the operation as last seen.
struct WalletCeremonyOutcome {
  WalletCeremonyPhase phase;
  std::optional<V6WalletOperation> operation;
  bool operator==(const WalletCeremonyOutcome&) const = default;
};

// How a ceremony watches and paces itself, apart from its steps.
struct WalletCeremonySettings {
  // True while the account and session are the ones the ceremony began with.
  std::function<bool()> fence;
  std::chrono::milliseconds pollInterval{std::chrono::seconds(3)};
  // Reads while observing; after the last one the ceremony returns with
  // the operation still open (observing or unreconciled).
  int pollLimit = 40;

  // The clock (seconds since 1970), the wait between reads, and who hears of
  // each phase as it begins; real time, a real sleep and nobody by default.
  std::function<double()> now;
  std::function<void(std::chrono::milliseconds)> sleep;
  std::function<void(const WalletCeremonyPhase&, const std::optional<V6WalletOperation>&)> phaseObserver;
};

// One wallet operation from preparation to its result on chain:
//
//   preparing → awaitingAuthorization → submitting → observing
//     → confirmed | reverted | replaced
//
// with `unreconciled` while the chain's result cannot yet be tied to the
// operation, `expired` when its time runs out before submission, `cancelled`
// when the member stops, and `failed(message)` otherwise. Each step is a
// replaceable function; `fence` runs before every step and stops the
// ceremony when the account or session changed. Only an operation whose
// status is `prepared` is ever given to `authorizeOperation`, so an
// operation seen as replaced (or anything past preparation) is never signed.
struct WalletOperationCeremony : WalletCeremonySettings {
  std::function<WalletStepResult<V6WalletOperation>(const V6WalletIntent&)> prepareOperation;
  // The passkey's approval of the operation: the assertion's fields.
  std::function<WalletStepResult<V6WalletStringMap>(const V6WalletOperation&)> authorizeOperation;
  std::function<WalletStepResult<V6WalletOperation>(const V6WalletOperation&, const V6WalletStringMap&)>
      approveOperation;
  std::function<WalletStepResult<V6WalletOperation>(const V6WalletOperation&)> submitOperation;
  // Reads the operation again.
  std::function<WalletStepResult<V6WalletOperation>(const V6WalletOperation&)> observeOperation;
  // The whole ceremony for a new operation.
  WalletCeremonyOutcome run(const V6WalletIntent& intent) const;
  // Carries an existing operation on from where it stands: authorises a
  // prepared one, resubmits an approved one under its own request id,
  // observes a submitted or unreconciled one; a finished one is returned as
  // it is.
  WalletCeremonyOutcome resume(const V6WalletOperation& operation) const;
};

// The phase a step failure ends the ceremony in: the service's codes for an
// expired, replaced or unreconciled operation are those phases; a decline is
// `cancelled`; anything else fails with its message.
WalletCeremonyPhase walletCeremonyPhase(const WalletStepFailure& failure);

}  // namespace kovi
