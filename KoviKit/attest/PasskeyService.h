#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestError.h"

namespace kovi {

// The codes a passkey failure carries, in the device-key error's shape.
namespace passkeyErrorCode {
// The member dismissed the prompt: they chose to stop.
inline constexpr std::string_view cancelled = "passkey_cancelled";
// No credential to sign with (none made yet, or the one asked for is gone).
inline constexpr std::string_view notFound = "passkey_not_found";
inline constexpr std::string_view failed = "passkey_failed";
}  // namespace passkeyErrorCode

// A passkey as made: its id (base64url) and its public key as DER
// SubjectPublicKeyInfo, what the service registers.
struct PasskeyCredential {
  std::string credentialId;
  std::vector<std::uint8_t> publicKeyDer;
  std::vector<std::uint8_t> userHandle;
  bool operator==(const PasskeyCredential&) const = default;
};

// A standard WebAuthn assertion: `signature` is DER ECDSA P-256 over
// authenticatorData ‖ SHA-256(clientDataJSON).
struct PasskeyAssertion {
  std::string credentialId;
  std::vector<std::uint8_t> authenticatorData;
  std::vector<std::uint8_t> clientDataJSON;
  std::vector<std::uint8_t> signature;
  std::vector<std::uint8_t> userHandle;
  bool operator==(const PasskeyAssertion&) const = default;

  // The fields as they travel: `credentialId`, `authenticatorData`,
  // `clientDataJSON`, `signature`, `userHandle`, each base64url.
  std::map<std::string, std::string> fields() const;
};

// The platform's passkeys. The portable implementation is
// `SoftwarePasskeyService` (OpenSSL P-256, files under Kovi/Passkeys/v1).
class PasskeyService {
 public:
  virtual ~PasskeyService() = default;

  // A new passkey for this relying party.
  virtual std::expected<PasskeyCredential, AppAttestError> createCredential() = 0;

  // An assertion over `challenge` by `credentialId`, or by the only passkey
  // there is when none is named. Each assertion uses the next counter value,
  // stored before the assertion is returned.
  virtual std::expected<PasskeyAssertion, AppAttestError> getAssertion(
      std::span<const std::uint8_t> challenge, const std::optional<std::string>& credentialId) = 0;
};

}  // namespace kovi
