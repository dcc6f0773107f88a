#pragma once

#include <string>
#include <string_view>

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The codes of the invite flow. Except for `codeUnrecognized`, which this
// device decides on its own, they are the service's.
namespace inviteErrorCode {
inline constexpr std::string_view notFound = "invite_not_found";
inline constexpr std::string_view invitationNotFound = "invitation_not_found";
inline constexpr std::string_view joinPending = "invitation_join_pending";
inline constexpr std::string_view updatePending = "invitation_update_pending";
inline constexpr std::string_view noLongerValid = "invitation_no_longer_valid";
inline constexpr std::string_view linksUnavailable = "invite_links_unavailable";
inline constexpr std::string_view signerUnavailable = "invite_signer_unavailable";
inline constexpr std::string_view creationUnavailable = "invite_creation_unavailable";
inline constexpr std::string_view codeUnrecognized = "invite_code_unrecognized";
}  // namespace inviteErrorCode

// The codes of wallet operations, all the service's.
namespace walletErrorCode {
inline constexpr std::string_view codeChanged = "wallet_code_changed";
inline constexpr std::string_view tokenChanged = "wallet_token_changed";
inline constexpr std::string_view escrowUnavailable = "escrow_unavailable";
inline constexpr std::string_view unsupportedEscrow = "unsupported_escrow";
inline constexpr std::string_view escrowRegistryCollision = "escrow_registry_collision";
inline constexpr std::string_view testBalanceRequired = "test_balance_required";
inline constexpr std::string_view settlementUnavailable = "settlement_unavailable";
inline constexpr std::string_view settlementPolicyRefused = "wallet_settlement_policy_refused";
inline constexpr std::string_view allocationsChanged = "allocations_changed";
inline constexpr std::string_view operationPending = "wallet_operation_pending";
inline constexpr std::string_view actionBlockedByPendingOperation = "wallet_action_blocked_by_pending_operation";
inline constexpr std::string_view retryUnavailable = "wallet_retry_unavailable";
inline constexpr std::string_view actionNotAvailable = "wallet_action_not_available";
inline constexpr std::string_view operationNotFound = "wallet_operation_not_found";
inline constexpr std::string_view operationExpired = "wallet_operation_expired";
inline constexpr std::string_view operationClaimed = "wallet_operation_claimed";
inline constexpr std::string_view submissionUnreconciled = "wallet_submission_unreconciled";
inline constexpr std::string_view operationReplaced = "wallet_operation_replaced";
inline constexpr std::string_view reviewChanged = "wallet_review_changed";
inline constexpr std::string_view v6ConfigurationUnavailable = "v6_configuration_unavailable";
inline constexpr std::string_view configurationUnavailable = "wallet_configuration_unavailable";
inline constexpr std::string_view requestChanged = "wallet_request_changed";
inline constexpr std::string_view operationChanged = "wallet_operation_changed";
inline constexpr std::string_view invalidOperation = "invalid_wallet_operation";
inline constexpr std::string_view invalidSignature = "invalid_wallet_signature";
inline constexpr std::string_view receiptMismatch = "wallet_receipt_mismatch";
inline constexpr std::string_view configurationChanged = "wallet_configuration_changed";
inline constexpr std::string_view invalidAction = "invalid_wallet_action";
inline constexpr std::string_view nativeApprovalRequired = "native_approval_required";
// A claim asked for before the 24-hour safety period after settlement ended.
inline constexpr std::string_view claimNotOpen = "wallet_claim_not_open";
}  // namespace walletErrorCode

// The error vocabulary of "/api/native/v6/wallet": the invite codes and the
// wallet operations' codes of the same service area.
const NativeErrorTable& v6WalletErrorTable();

// An invite flow failure: the code and the Turkish text the user reads.
struct V6InviteError {
  std::string code;

  std::string message() const { return v6WalletErrorTable().messageFor(code); }
  bool operator==(const V6InviteError&) const = default;
};

}  // namespace kovi
