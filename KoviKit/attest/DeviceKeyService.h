#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/attest/AppAttestError.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {

// The device-integrity key service: keys that never leave the device, an
// attestation that a key is genuine, and assertions over client-data hashes.
// The portable implementation is `SoftwareDeviceKeyService` (OpenSSL P-256).
class DeviceKeyService {
 public:
  virtual ~DeviceKeyService() = default;

  virtual bool isSupported() const = 0;

  // A new key; returns its identifier.
  virtual std::expected<std::string, AppAttestError> generateKey() = 0;

  // The attestation object of `keyId` over `clientDataHash`.
  virtual std::expected<std::vector<std::uint8_t>, AppAttestError> attestKey(std::string_view keyId,
                                                                           const Sha256Digest& clientDataHash) = 0;

  // An assertion by `keyId` over `clientDataHash`. Each call uses the next
  // counter value, stored before the assertion is returned.
  virtual std::expected<AppAttestAssertion, AppAttestError> generateAssertion(std::string_view keyId,
                                                                             const Sha256Digest& clientDataHash) = 0;
};

}  // namespace kovi
