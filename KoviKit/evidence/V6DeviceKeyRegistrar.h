#pragma once

#include <expected>
#include <functional>
#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestKeyStore.h"
#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/V6WalkingEvidenceAPI.h"

namespace kovi {

// Registers the device key an account signs evidence with. A new platform key
// is attested over the SHA-256 of a "registerDeviceKey" challenge; the
// registration is kept as the key's `pendingRegistration` before it is sent,
// so an unanswered registration is sent again as it was. An account's earlier
// registered key becomes one of its `replacedServerDeviceKeyIds`, which lets
// the new key take over the evidence writer of its kovis.
class V6DeviceKeyRegistrar {
 public:
  V6DeviceKeyRegistrar(V6WalkingEvidenceAPI& api, DeviceKeyService& keys, AppAttestKeyStore& store,
                       std::function<std::string()> newRequestId, std::string appIdentity,
                       AppAttestEnvironment environment);

  std::expected<AppAttestDeviceKey, V6EvidenceSubmissionError> registerKey(std::string_view accountId);

 private:
  std::expected<AppAttestDeviceKey, V6EvidenceSubmissionError> confirm(std::string_view accountId,
                                                                       AppAttestDeviceKey key);

  V6WalkingEvidenceAPI& api_;
  DeviceKeyService& keys_;
  AppAttestKeyStore& store_;
  std::function<std::string()> newRequestId_;
  std::string appIdentity_;
  AppAttestEnvironment environment_;
};

}  // namespace kovi
