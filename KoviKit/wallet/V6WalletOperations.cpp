#include "KoviKit/wallet/V6WalletOperations.h"

#include "KoviKit/foundation/Localization.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;

constexpr std::string_view kPasskeyFailedMessage = "Geçiş anahtarıyla onay alınamadı. Yeniden dene.";

WalletCeremonyOutcome storeFailure(const V6WalletOperationStoreError& error) {
  return {WalletCeremonyPhase::failed(error.message()), std::nullopt};
}

}  // namespace

V6WalletOperations::V6WalletOperations(V6WalletAPI& api, V6WalletOperationStore& store, PasskeyService& passkeys,
                                       V6WalletOperationsOptions options)
    : api_(api), store_(store), passkeys_(passkeys), options_(std::move(options)) {}

WalletStepFailure V6WalletOperations::failureOf(const NativeAccountError& error) const {
  switch (error.kind()) {
    case NativeAccountError::Case::service:
      return {WalletStepFailure::Kind::refused, std::string(*error.code()), api_.message(error)};
    case NativeAccountError::Case::signInRequired:
      return {WalletStepFailure::Kind::refused, "sign_in_required", api_.message(error)};
    case NativeAccountError::Case::rateLimited:
    case NativeAccountError::Case::unavailable:
    case NativeAccountError::Case::invalidResponse: return {WalletStepFailure::Kind::lost, {}, api_.message(error)};
  }
  return {WalletStepFailure::Kind::lost, {}, api_.message(error)};
}

// Every operation the service answers with is written down before the
// ceremony goes on, so a crash leaves the member's open operation known.
WalletStepResult<V6WalletOperation> V6WalletOperations::kept(
    std::expected<V6WalletOperation, NativeAccountError> answer) {
  if (!answer) return std::unexpected(failureOf(answer.error()));
  if (auto saved = store_.save(options_.member, *answer); !saved) {
    return std::unexpected(WalletStepFailure{WalletStepFailure::Kind::broken, {}, saved.error().message()});
  }
  return std::move(*answer);
}

WalletOperationCeremony V6WalletOperations::ceremony() {
  WalletOperationCeremony ceremony;
  ceremony.prepareOperation = [this](const V6WalletIntent& intent) {
    return kept(api_.prepareOperation(makeV6WalletRequestId(), intent, options_.token));
  };
  ceremony.authorizeOperation = [this](const V6WalletOperation& operation) -> WalletStepResult<V6WalletStringMap> {
    // The challenge is the user operation hash's bytes, so the service can
    // tie the approval to exactly this operation.
    if (!operation.userOperationHash) {
      return std::unexpected(
          WalletStepFailure{WalletStepFailure::Kind::broken, {}, std::string(kNativeInvalidResponseMessage)});
    }
    const auto challenge = hexBytes(*operation.userOperationHash);
    auto assertion = passkeys_.getAssertion(challenge, options_.passkeyCredentialId);
    if (!assertion) {
      if (assertion.error().code == passkeyErrorCode::cancelled) {
        return std::unexpected(WalletStepFailure{WalletStepFailure::Kind::declined, {}, {}});
      }
      return std::unexpected(
          WalletStepFailure{WalletStepFailure::Kind::broken, assertion.error().code, localized(kPasskeyFailedMessage)});
    }
    return assertion->fields();
  };
  ceremony.approveOperation = [this](const V6WalletOperation& operation, const V6WalletStringMap& assertion) {
    return kept(api_.approveOperation(operation.requestId, assertion, options_.token));
  };
  ceremony.submitOperation = [this](const V6WalletOperation& operation) {
    return kept(api_.submitOperation(operation.requestId, options_.token));
  };
  ceremony.observeOperation = [this](const V6WalletOperation& operation) {
    return kept(api_.operation(operation.requestId, options_.token));
  };
  static_cast<WalletCeremonySettings&>(ceremony) = options_.ceremony;
  return ceremony;
}

WalletCeremonyOutcome V6WalletOperations::start(const V6WalletIntent& intent) {
  auto last = store_.load(options_.member);
  if (!last) return storeFailure(last.error());
  if (*last && isOpen((*last)->status)) {
    // A prepared operation whose time ran out was never sent; it no longer
    // holds the member back.
    const double now = options_.ceremony.now ? options_.ceremony.now() : static_cast<double>(Date::now().unixMillis()) / 1000.0;
    const bool lapsed = (*last)->status == V6WalletOperationStatus::prepared && (*last)->hasExpired(now);
    if (!lapsed) {
      return {WalletCeremonyPhase::failed(
                  v6WalletErrorTable().messageFor(walletErrorCode::actionBlockedByPendingOperation)),
              *last};
    }
  }
  return ceremony().run(intent);
}

std::optional<WalletCeremonyOutcome> V6WalletOperations::checkStatus() {
  auto last = store_.load(options_.member);
  if (!last) return storeFailure(last.error());
  if (!*last) return std::nullopt;
  auto seen = kept(api_.operation((*last)->requestId, options_.token));
  if (!seen) {
    // Nothing new was learnt: the operation stands as last seen.
    const WalletCeremonyPhase phase = walletCeremonyPhase(seen.error());
    return WalletCeremonyOutcome{phase.kind == Kind::failed ? phase : walletCeremonyPhase((*last)->status), *last};
  }
  return WalletCeremonyOutcome{walletCeremonyPhase(seen->status), *seen};
}

WalletCeremonyOutcome V6WalletOperations::resubmit() {
  auto last = store_.load(options_.member);
  if (!last) return storeFailure(last.error());
  if (!*last || (*last)->status != V6WalletOperationStatus::approved) {
    return {WalletCeremonyPhase::failed(v6WalletErrorTable().messageFor(walletErrorCode::retryUnavailable)), *last};
  }
  return ceremony().resume(**last);
}

WalletCeremonyOutcome V6WalletOperations::cancel() {
  auto last = store_.load(options_.member);
  if (!last) return storeFailure(last.error());
  if (!*last || (*last)->status != V6WalletOperationStatus::prepared) {
    return {WalletCeremonyPhase::failed(v6WalletErrorTable().messageFor(walletErrorCode::actionNotAvailable)), *last};
  }
  auto cancelled = kept(api_.cancelOperation((*last)->requestId, options_.token));
  if (!cancelled) return {walletCeremonyPhase(cancelled.error()), *last};
  return {walletCeremonyPhase(cancelled->status), *cancelled};
}

}  // namespace kovi
