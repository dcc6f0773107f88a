#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletDraft.h"
#include "KoviKit/wallet/V6WalletJson.h"

namespace kovi {

// A kovi's number in the on-chain registry: a positive decimal of at most 78
// digits (a 256-bit integer), without leading zeros.
struct V6KoviIdForm {
  static std::optional<std::string> refusal(std::string_view text);
};

using V6KoviId = V6FormedString<V6KoviIdForm>;

// A kovi as the wallet service lists it.
struct V6WalletKovi {
  std::int64_t chainId = 0;
  std::string reference;
  V6WalletAddress registryAddress;
  V6KoviId koviId;
  V6WalletDomain domain = V6WalletDomain::walking;
  std::string creator;
  std::string termsHash;
  std::string deploymentFingerprint;
  std::optional<V6WalletDraft> draft;

  bool operator==(const V6WalletKovi&) const = default;
};

template <>
struct JsonRecordFields<V6WalletKovi> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("chainId", &V6WalletKovi::chainId),
      field("reference", &V6WalletKovi::reference),
      field("registryAddress", &V6WalletKovi::registryAddress),
      field("koviId", &V6WalletKovi::koviId),
      field("domain", &V6WalletKovi::domain),
      field("creator", &V6WalletKovi::creator),
      field("termsHash", &V6WalletKovi::termsHash),
      field("deploymentFingerprint", &V6WalletKovi::deploymentFingerprint),
      field("draft", &V6WalletKovi::draft),
  };
};

}  // namespace kovi
