#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/attest/AppAttestPurpose.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// What the device sends to register a new key: the platform key identifier,
// the attestation object made over the SHA-256 of the challenge text, and
// where the key lives (app identity, attestation environment).
struct DeviceKeyRegistration {
  std::string keyId;
  std::optional<std::string> financialActorId;
  std::vector<std::uint8_t> attestationObject;
  std::string challengeId;
  std::string appIdentity;
  AppAttestEnvironment environment = AppAttestEnvironment::development;
  bool operator==(const DeviceKeyRegistration&) const = default;
};

template <>
struct JsonRecordFields<DeviceKeyRegistration> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("keyId", &DeviceKeyRegistration::keyId),
      field("financialActorId", &DeviceKeyRegistration::financialActorId),
      field("attestationObject", &DeviceKeyRegistration::attestationObject),
      field("challengeId", &DeviceKeyRegistration::challengeId),
      field("appIdentity", &DeviceKeyRegistration::appIdentity),
      field("environment", &DeviceKeyRegistration::environment)};
};

}  // namespace kovi
