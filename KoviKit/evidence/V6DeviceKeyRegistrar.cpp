#include "KoviKit/evidence/V6DeviceKeyRegistrar.h"

namespace kovi {
namespace {

V6EvidenceSubmissionError storeFailure(const std::string& detail) {
  return V6EvidenceSubmissionError::fromDeviceKey(AppAttestError{"attestation_failed", detail});
}

}  // namespace

V6DeviceKeyRegistrar::V6DeviceKeyRegistrar(V6WalkingEvidenceAPI& api, DeviceKeyService& keys,
                                           AppAttestKeyStore& store, std::function<std::string()> newRequestId,
                                           std::string appIdentity, AppAttestEnvironment environment)
    : api_(api),
      keys_(keys),
      store_(store),
      newRequestId_(std::move(newRequestId)),
      appIdentity_(std::move(appIdentity)),
      environment_(environment) {}

std::expected<AppAttestDeviceKey, V6EvidenceSubmissionError> V6DeviceKeyRegistrar::confirm(std::string_view accountId,
                                                                                          AppAttestDeviceKey key) {
  auto serverId = api_.registerDeviceKey(*key.pendingRegistration);
  if (!serverId) return std::unexpected(V6EvidenceSubmissionError::fromService(serverId.error()));
  key.serverDeviceKeyId = std::move(*serverId);
  key.pendingRegistration.reset();
  if (auto stored = store_.store(accountId, key); !stored) return std::unexpected(storeFailure(stored.error()));
  return key;
}

std::expected<AppAttestDeviceKey, V6EvidenceSubmissionError> V6DeviceKeyRegistrar::registerKey(
    std::string_view accountId) {
  if (!keys_.isSupported()) {
    return std::unexpected(V6EvidenceSubmissionError::fromDeviceKey(
        AppAttestError{"attestation_unsupported", "this device cannot make platform keys"}));
  }
  auto existing = store_.key(accountId);
  if (!existing) return std::unexpected(storeFailure(existing.error()));
  if (*existing && (*existing)->pendingRegistration) {
    auto confirmed = confirm(accountId, **existing);
    // A registration whose challenge has run out is replaced by a new one;
    // any other answer stands.
    const auto code = confirmed ? std::nullopt : std::optional<std::string>(confirmed.error().code);
    if (confirmed || (code != "challenge_expired" && code != "challenge_consumed")) return confirmed;
  }

  auto challenge = api_.createAttestationChallenge(newRequestId_(), std::nullopt, AppAttestPurpose::registerDeviceKey);
  if (!challenge) return std::unexpected(V6EvidenceSubmissionError::fromService(challenge.error()));
  auto keyId = keys_.generateKey();
  if (!keyId) return std::unexpected(V6EvidenceSubmissionError::fromDeviceKey(keyId.error()));
  auto attestation = keys_.attestKey(*keyId, sha256(challenge->challenge));
  if (!attestation) return std::unexpected(V6EvidenceSubmissionError::fromDeviceKey(attestation.error()));

  AppAttestDeviceKey key;
  key.keyId = *keyId;
  key.appIdentity = appIdentity_;
  key.environment = environment_;
  key.pendingRegistration = DeviceKeyRegistration{*keyId,        challenge->financialActorId, std::move(*attestation),
                                                  challenge->challengeId, appIdentity_,  environment_};
  if (*existing) {
    key.replacedServerDeviceKeyIds = (*existing)->replacedServerDeviceKeyIds;
    if ((*existing)->serverDeviceKeyId) key.replacedServerDeviceKeyIds.push_back(*(*existing)->serverDeviceKeyId);
  }
  if (auto stored = store_.store(accountId, key); !stored) return std::unexpected(storeFailure(stored.error()));
  return confirm(accountId, std::move(key));
}

}  // namespace kovi
