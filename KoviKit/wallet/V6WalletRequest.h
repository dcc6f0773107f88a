#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletIntent.h"
#include "KoviKit/wallet/V6WalletJson.h"

namespace kovi {

// The actions of the operation ceremony; the service knows more (listing
// kovis, invites, progress), which travel in the same request.
namespace v6WalletAction {
inline constexpr std::string_view prepareOperation = "prepareOperation";
inline constexpr std::string_view approveOperation = "approveOperation";
inline constexpr std::string_view submitOperation = "submitOperation";
inline constexpr std::string_view operation = "operation";
inline constexpr std::string_view cancelOperation = "cancelOperation";
}  // namespace v6WalletAction

// One POST to "/api/native/v6/wallet". Keys go out in this order and a field
// without a value is left out (never null).
struct V6WalletRequest {
  std::string action;
  std::optional<std::string> requestId;  // a UUID, lower case
  std::optional<V6WalletIntent> intent;
  std::optional<std::string> reference;
  // The passkey assertion's fields (base64url).
  std::optional<V6WalletStringMap> assertion;
  std::optional<std::string> cursor;
  std::optional<std::string> destination;
  std::optional<std::string> code;  // an invite code
  std::optional<std::string> address;
  std::optional<std::string> day;
  std::optional<std::int64_t> steps;

  bool operator==(const V6WalletRequest&) const = default;
};

template <>
struct JsonRecordFields<V6WalletRequest> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("action", &V6WalletRequest::action),
      field("requestId", &V6WalletRequest::requestId),
      field("intent", &V6WalletRequest::intent),
      field("reference", &V6WalletRequest::reference),
      field("assertion", &V6WalletRequest::assertion),
      field("cursor", &V6WalletRequest::cursor),
      field("destination", &V6WalletRequest::destination),
      field("code", &V6WalletRequest::code),
      field("address", &V6WalletRequest::address),
      field("day", &V6WalletRequest::day),
      field("steps", &V6WalletRequest::steps),
  };
};

// The request as sent: compact JSON in the order above.
std::string encodeV6WalletRequest(const V6WalletRequest& request);

// A fresh random request id (UUID version 4, lower case).
std::string makeV6WalletRequestId();

}  // namespace kovi
