#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/attest/DeviceKeyRegistration.h"

namespace kovi {

// The device key an account signs with, as this device keeps it.
struct AppAttestDeviceKey {
  // The platform key identifier.
  std::string keyId;
  // The service's identifier for the key once it confirmed the registration.
  std::optional<std::string> serverDeviceKeyId;
  std::string appIdentity;
  AppAttestEnvironment environment = AppAttestEnvironment::development;
  // A registration sent but not yet confirmed.
  std::optional<DeviceKeyRegistration> pendingRegistration;
  // Server identifiers of earlier keys of this same device: a writer among
  // them is this device's own, and the writer moves to the current key.
  std::vector<std::string> replacedServerDeviceKeyIds;
  bool operator==(const AppAttestDeviceKey&) const = default;
};

template <>
struct JsonRecordFields<AppAttestDeviceKey> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("keyId", &AppAttestDeviceKey::keyId),
      field("serverDeviceKeyId", &AppAttestDeviceKey::serverDeviceKeyId),
      field("appIdentity", &AppAttestDeviceKey::appIdentity),
      field("environment", &AppAttestDeviceKey::environment),
      field("pendingRegistration", &AppAttestDeviceKey::pendingRegistration),
      field("replacedServerDeviceKeyIds", &AppAttestDeviceKey::replacedServerDeviceKeyIds)};
};

}  // namespace kovi
