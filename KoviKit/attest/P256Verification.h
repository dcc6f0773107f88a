#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {

// Whether `derSignature` is a valid DER ECDSA P-256/SHA-256 signature over
// `message` by the key whose DER SubjectPublicKeyInfo is `publicKeyDer`.
// Used for server-signed records (offline leases) and by services in tests.
bool verifyP256Signature(std::span<const std::uint8_t> publicKeyDer, std::string_view message,
                         std::span<const std::uint8_t> derSignature);

// Checks an assertion the way the service does: the authenticator data is
// SHA-256(appIdentity) followed by a 4-byte counter, and the signature covers
// authenticatorData ‖ clientDataHash. Returns the counter; the caller refuses
// a counter not above the last one it accepted.
std::expected<std::uint32_t, std::string> verifyAssertion(std::span<const std::uint8_t> publicKeyDer,
                                                          std::string_view appIdentity,
                                                          const Sha256Digest& clientDataHash,
                                                          const AppAttestAssertion& assertion);

}  // namespace kovi
