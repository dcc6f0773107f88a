#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6InviteLink.h"
#include "KoviKit/wallet/V6WalletKovi.h"
#include "KoviKit/wallet/V6WalletOperation.h"

namespace kovi {

// The answer of "/api/native/v6/wallet"; each action fills the fields it
// concerns. Parts this client only passes on (generations, facts, members,
// progress, photo) stay raw JSON.
struct V6WalletResponse {
  std::optional<std::string> chainTime;
  std::optional<std::string> asOfBlock;
  std::optional<V6WalletOperation> operation;
  std::optional<std::vector<V6WalletOperation>> operations;
  std::optional<std::vector<V6WalletKovi>> kovis;
  std::optional<V6WalletKovi> kovi;
  std::optional<nlohmann::ordered_json> generation;
  std::optional<nlohmann::ordered_json> generations;
  std::optional<nlohmann::ordered_json> facts;
  std::optional<V6InviteLink> invite;
  std::optional<std::string> reference;
  std::optional<nlohmann::ordered_json> members;
  std::optional<nlohmann::ordered_json> progress;
  std::optional<nlohmann::ordered_json> photo;

  bool operator==(const V6WalletResponse&) const = default;
};

template <>
struct JsonRecordFields<V6WalletResponse> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("chainTime", &V6WalletResponse::chainTime),
      field("asOfBlock", &V6WalletResponse::asOfBlock),
      field("operation", &V6WalletResponse::operation),
      field("operations", &V6WalletResponse::operations),
      field("kovis", &V6WalletResponse::kovis),
      field("kovi", &V6WalletResponse::kovi),
      field("generation", &V6WalletResponse::generation),
      field("generations", &V6WalletResponse::generations),
      field("facts", &V6WalletResponse::facts),
      field("invite", &V6WalletResponse::invite),
      field("reference", &V6WalletResponse::reference),
      field("members", &V6WalletResponse::members),
      field("progress", &V6WalletResponse::progress),
      field("photo", &V6WalletResponse::photo),
  };
};

}  // namespace kovi
