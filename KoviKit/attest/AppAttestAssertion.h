#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// What the device key returns for one client-data hash: the authenticator
// data (SHA-256 of the app identity, then the key's 4-byte big-endian use
// counter) and the DER ECDSA P-256/SHA-256 signature over
// authenticatorData ‖ clientDataHash. Both travel as base64 in JSON.
struct AppAttestAssertion {
  std::vector<std::uint8_t> authenticatorData;
  std::vector<std::uint8_t> signature;
  bool operator==(const AppAttestAssertion&) const = default;
};

template <>
struct JsonRecordFields<AppAttestAssertion> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("authenticatorData", &AppAttestAssertion::authenticatorData),
                                            field("signature", &AppAttestAssertion::signature)};
};

// The single-string form in which records that carry a `signature` string
// (protection proofs and transitions, checkpoints, offline proofs, command
// acknowledgements) send an assertion: base64 of the 36 bytes of
// authenticator data followed by the DER signature.
std::string compactAssertion(const AppAttestAssertion& assertion);

}  // namespace kovi
