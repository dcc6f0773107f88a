#include "KoviKit/wallet/WalletOperationCeremony.h"

#include <thread>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/native/NativeAccountError.h"
#include "KoviKit/wallet/V6WalletErrors.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;

// One pass of a ceremony: the operation as last seen and the phase last
// announced, so each phase is announced once when it begins.
class CeremonyPass {
 public:
  explicit CeremonyPass(const WalletOperationCeremony& ceremony) : ceremony_(ceremony) {}

  WalletCeremonyOutcome begin(const V6WalletIntent& intent) {
    enter({Kind::preparing, {}});
    if (!fenceHolds()) return end(fenceTripped());
    auto prepared = ceremony_.prepareOperation(intent);
    if (!prepared) return end(preparationFailure(prepared.error()));
    operation_ = std::move(*prepared);
    return carryOn();
  }

  WalletCeremonyOutcome resume(const V6WalletOperation& operation) {
    operation_ = operation;
    return carryOn();
  }

 private:
  WalletCeremonyOutcome carryOn() {
    while (true) {
      const V6WalletOperation current = *operation_;
      switch (current.status) {
        case V6WalletOperationStatus::prepared: {
          if (authorized_) return end(unusableAnswer());  // approval did not move it: never sign twice
          if (expired()) return end({Kind::expired, {}});
          enter({Kind::awaitingAuthorization, {}});
          if (!fenceHolds()) return end(fenceTripped());
          auto assertion = ceremony_.authorizeOperation(current);
          authorized_ = true;
          if (!assertion) return end(walletCeremonyPhase(assertion.error()));
          if (!fenceHolds()) return end(fenceTripped());
          if (expired()) return end({Kind::expired, {}});
          auto approved = ceremony_.approveOperation(current, *assertion);
          if (!approved) return end(walletCeremonyPhase(approved.error()));
          if (!take(std::move(*approved))) return end(unusableAnswer());
          break;
        }
        case V6WalletOperationStatus::approved: {
          if (submitted_) return end(unusableAnswer());  // the submission did not move it
          enter({Kind::submitting, {}});
          if (expired()) return end({Kind::expired, {}});
          if (!fenceHolds()) return end(fenceTripped());
          auto sent = ceremony_.submitOperation(current);
          submitted_ = true;
          if (!sent) {
            // Whether the chain got it is unknown; the same approved
            // operation may be sent again under its request id.
            if (sent.error().kind == WalletStepFailure::Kind::lost) {
              return end(WalletCeremonyPhase::failed(std::string(walletCeremonyText::submissionUnconfirmed)));
            }
            const WalletCeremonyPhase phase = walletCeremonyPhase(sent.error());
            if (phase.kind != Kind::unreconciled) return end(phase);
            enter(phase);
            return observe();
          }
          if (!take(std::move(*sent))) return end(unusableAnswer());
          break;
        }
        case V6WalletOperationStatus::submitted:
        case V6WalletOperationStatus::unreconciled: return observe();
        default: return end(walletCeremonyPhase(current.status));
      }
    }
  }

  WalletCeremonyOutcome observe() {
    for (int read = 0; read < ceremony_.pollLimit; ++read) {
      if (isOpen(operation_->status)) enter(walletCeremonyPhase(operation_->status));
      wait();
      if (!fenceHolds()) return end(fenceTripped());
      auto seen = ceremony_.observeOperation(*operation_);
      if (!seen) {
        if (seen.error().kind == WalletStepFailure::Kind::lost) continue;  // read again at the next turn
        const WalletCeremonyPhase phase = walletCeremonyPhase(seen.error());
        if (phase.kind != Kind::unreconciled) return end(phase);
        enter(phase);
        continue;
      }
      if (!take(std::move(*seen))) return end(unusableAnswer());
      const V6WalletOperationStatus status = operation_->status;
      // Once sent, an operation only moves on; going back would ask for a
      // second signature or submission.
      if (status == V6WalletOperationStatus::prepared || status == V6WalletOperationStatus::approved) {
        return end(unusableAnswer());
      }
      if (!isOpen(status)) return end(walletCeremonyPhase(status));
    }
    return {last_.value_or(WalletCeremonyPhase{Kind::observing, {}}), operation_};
  }

  // Takes the server's newer view of the operation: the same request, and a
  // revision that never goes back.
  bool take(V6WalletOperation next) {
    if (next.requestId != operation_->requestId || next.revision < operation_->revision) return false;
    operation_ = std::move(next);
    return true;
  }

  bool expired() const {
    const double now = ceremony_.now ? ceremony_.now() : static_cast<double>(Date::now().unixMillis()) / 1000.0;
    return operation_->hasExpired(now);
  }

  void wait() const {
    if (ceremony_.sleep) return ceremony_.sleep(ceremony_.pollInterval);
    std::this_thread::sleep_for(ceremony_.pollInterval);
  }

  bool fenceHolds() const { return !ceremony_.fence || ceremony_.fence(); }

  static WalletCeremonyPhase fenceTripped() {
    return WalletCeremonyPhase::failed(std::string(walletCeremonyText::fenceTripped));
  }

  static WalletCeremonyPhase unusableAnswer() {
    return WalletCeremonyPhase::failed(std::string(kNativeInvalidResponseMessage));
  }

  // The service's own words when it said why; otherwise nothing was sent.
  static WalletCeremonyPhase preparationFailure(const WalletStepFailure& failure) {
    if (failure.kind == WalletStepFailure::Kind::refused && v6WalletErrorTable().knows(failure.code)) {
      return WalletCeremonyPhase::failed(failure.message);
    }
    return WalletCeremonyPhase::failed(std::string(walletCeremonyText::preparationFailed));
  }

  void enter(const WalletCeremonyPhase& phase) {
    if (last_ == phase) return;
    last_ = phase;
    if (ceremony_.phaseObserver) ceremony_.phaseObserver(phase, operation_);
  }

  WalletCeremonyOutcome end(const WalletCeremonyPhase& phase) {
    enter(phase);
    return {phase, operation_};
  }

  const WalletOperationCeremony& ceremony_;
  std::optional<V6WalletOperation> operation_;
  std::optional<WalletCeremonyPhase> last_;
  bool authorized_ = false;
  bool submitted_ = false;
};

}  // namespace

WalletCeremonyOutcome WalletOperationCeremony::run(const V6WalletIntent& intent) const {
  return CeremonyPass(*this).begin(intent);
}

WalletCeremonyOutcome WalletOperationCeremony::resume(const V6WalletOperation& operation) const {
  return CeremonyPass(*this).resume(operation);
}

WalletCeremonyPhase walletCeremonyPhase(const WalletStepFailure& failure) {
  switch (failure.kind) {
    case WalletStepFailure::Kind::declined: return {Kind::cancelled, {}};
    case WalletStepFailure::Kind::refused:
      if (failure.code == walletErrorCode::operationExpired) return {Kind::expired, {}};
      if (failure.code == walletErrorCode::operationReplaced) return {Kind::replaced, {}};
      if (failure.code == walletErrorCode::submissionUnreconciled) return {Kind::unreconciled, {}};
      return WalletCeremonyPhase::failed(failure.message);
    case WalletStepFailure::Kind::lost:
    case WalletStepFailure::Kind::broken: return WalletCeremonyPhase::failed(failure.message);
  }
  return WalletCeremonyPhase::failed(failure.message);
}

}  // namespace kovi
