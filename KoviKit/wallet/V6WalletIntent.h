#pragma once

#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletDraft.h"

namespace kovi {

// What the member asks a wallet operation to do.
struct V6WalletIntent {
  // The action: "create", "join", "activate", "leave", "exit", "cancel",
  // "settle", "refund", "claim", or a rollover approval.
  std::string kind;
  // The kovi acted on; absent when creating one.
  std::optional<std::string> reference;
  // What a creator filled in; only when creating.
  std::optional<V6WalletDraft> draft;
  // Digest of what the member reviewed, so the server can tell a changed review.
  std::string reviewDigest;
  // Where a rollover goes.
  std::optional<std::string> destination;
  bool approved = false;

  bool operator==(const V6WalletIntent&) const = default;
};

template <>
struct JsonRecordFields<V6WalletIntent> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("kind", &V6WalletIntent::kind),
      field("reference", &V6WalletIntent::reference),
      field("draft", &V6WalletIntent::draft),
      field("reviewDigest", &V6WalletIntent::reviewDigest),
      field("destination", &V6WalletIntent::destination),
      field("approved", &V6WalletIntent::approved),
  };
};

}  // namespace kovi
