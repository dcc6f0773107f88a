#include "KoviKit/working/WorkingOfflineProof.h"

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/attest/PurposeSigning.h"

namespace kovi {

std::expected<WorkingOfflineProof, WorkingOfflineError> makeWorkingOfflineProof(
    const WorkingOfflineRuntime& runtime, const WorkingOfflineProtection& protection) {
  if (!runtime.lease) return std::unexpected(WorkingOfflineError{WorkingOfflineError::Kind::unavailable, "no lease"});
  const WorkingOfflineLease& lease = *runtime.lease;
  const WorkingOfflineAnchor& head = runtime.head();
  return WorkingOfflineProof{WorkingOfflineProof::kVersion, lease.id,      lease.sessionID, lease.deviceID,
                             lease.epoch,                   head.sequence, head.headHash,   lease.rulesHash,
                             protection};
}

std::expected<std::string, AppAttestError> signWorkingOfflineProof(DeviceKeyService& keys, std::string_view keyID,
                                                                   const WorkingOfflineProof& proof) {
  auto assertion = signRecord(keys, keyID, WorkingOfflineProof::kSigningPurpose, "proof", encodeRecord(proof));
  if (!assertion) return std::unexpected(assertion.error());
  return compactAssertion(*assertion);
}

}  // namespace kovi
