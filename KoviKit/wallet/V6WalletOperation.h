#pragma once

#include <array>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletDraft.h"
#include "KoviKit/wallet/V6WalletJson.h"

namespace kovi {

// Where an operation stands on the server. The service's raw strings; an
// unknown one fails the operation's decoding.
enum class V6WalletOperationStatus {
  prepared,      // built by the server, waiting for the member's passkey
  approved,      // signed by the member, not yet sent to the chain
  submitted,     // sent; waiting for the chain
  unreconciled,  // its nonce was used, but the result is not yet tied to it
  confirmed,
  reverted,
  replaced,  // another operation used the same nonce
  expired,   // its time ran out before it was submitted
  cancelled,
  failed,
};

template <>
struct EnumNames<V6WalletOperationStatus> {
  static constexpr std::array table{
      std::pair{V6WalletOperationStatus::prepared, std::string_view("prepared")},
      std::pair{V6WalletOperationStatus::approved, std::string_view("approved")},
      std::pair{V6WalletOperationStatus::submitted, std::string_view("submitted")},
      std::pair{V6WalletOperationStatus::unreconciled, std::string_view("unreconciled")},
      std::pair{V6WalletOperationStatus::confirmed, std::string_view("confirmed")},
      std::pair{V6WalletOperationStatus::reverted, std::string_view("reverted")},
      std::pair{V6WalletOperationStatus::replaced, std::string_view("replaced")},
      std::pair{V6WalletOperationStatus::expired, std::string_view("expired")},
      std::pair{V6WalletOperationStatus::cancelled, std::string_view("cancelled")},
      std::pair{V6WalletOperationStatus::failed, std::string_view("failed")},
  };
};

// True while the operation can still move money: prepared, approved,
// submitted or unreconciled.
bool isOpen(V6WalletOperationStatus status);

// One money-moving act of a member as the wallet service keeps it.
struct V6WalletOperation {
  // What the member is shown before approving.
  struct Review {
    // An invitee's signed permission to join.
    struct Join {
      std::string koviId;
      std::string termsHash;
      std::string recipient;
      std::int64_t inviteEpoch = 0;
      std::int64_t deadline = 0;
      std::string nonce;
      std::string signature;
      bool operator==(const Join&) const = default;
    };

    std::string requested;
    V6WalletDomain domain = V6WalletDomain::walking;
    std::string termsHash;
    std::optional<Join> join;
    std::optional<std::int64_t> allocationPolicyVersion;
    std::optional<nlohmann::ordered_json> allocationPreview;
    bool operator==(const Review&) const = default;
  };

  std::string requestId;
  std::string protocol;
  // Rises with every change of the operation on the server.
  std::int64_t revision = 0;
  V6WalletOperationStatus status = V6WalletOperationStatus::prepared;
  bool isSigned = false;
  // Floating seconds since 1970.
  double createdAt = 0;
  double expiresAt = 0;
  // What the passkey signs.
  std::optional<V6WalletHash> userOperationHash;
  std::optional<V6WalletHash> transactionHash;
  std::optional<std::string> reference;
  std::optional<std::string> deploymentFingerprint;
  std::optional<std::string> reviewDigest;
  std::optional<nlohmann::ordered_json> plan;
  // The user operation to sign, field by field.
  std::optional<V6WalletStringMap> operation;
  std::optional<Review> review;

  bool operator==(const V6WalletOperation&) const = default;

  // Whether the operation's time has run out at `nowSeconds` (since 1970).
  bool hasExpired(double nowSeconds) const { return nowSeconds >= expiresAt; }
};

template <>
struct JsonRecordFields<V6WalletOperation::Review::Join> : LenientJsonRecord {
  using Join = V6WalletOperation::Review::Join;
  static constexpr auto fields = std::tuple{
      field("koviId", &Join::koviId),     field("termsHash", &Join::termsHash), field("recipient", &Join::recipient),
      field("inviteEpoch", &Join::inviteEpoch), field("deadline", &Join::deadline), field("nonce", &Join::nonce),
      field("signature", &Join::signature),
  };
};

template <>
struct JsonRecordFields<V6WalletOperation::Review> : LenientJsonRecord {
  using Review = V6WalletOperation::Review;
  static constexpr auto fields = std::tuple{
      field("requested", &Review::requested),
      field("domain", &Review::domain),
      field("termsHash", &Review::termsHash),
      field("join", &Review::join),
      field("allocationPolicyVersion", &Review::allocationPolicyVersion),
      field("allocationPreview", &Review::allocationPreview),
  };
};

template <>
struct JsonRecordFields<V6WalletOperation> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("requestId", &V6WalletOperation::requestId),
      field("protocol", &V6WalletOperation::protocol),
      field("revision", &V6WalletOperation::revision),
      field("status", &V6WalletOperation::status),
      field("signed", &V6WalletOperation::isSigned),
      field("createdAt", &V6WalletOperation::createdAt),
      field("expiresAt", &V6WalletOperation::expiresAt),
      field("userOperationHash", &V6WalletOperation::userOperationHash),
      field("transactionHash", &V6WalletOperation::transactionHash),
      field("reference", &V6WalletOperation::reference),
      field("deploymentFingerprint", &V6WalletOperation::deploymentFingerprint),
      field("reviewDigest", &V6WalletOperation::reviewDigest),
      field("plan", &V6WalletOperation::plan),
      field("operation", &V6WalletOperation::operation),
      field("review", &V6WalletOperation::review),
  };
};

}  // namespace kovi
