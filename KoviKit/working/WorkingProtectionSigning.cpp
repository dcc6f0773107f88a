#include "KoviKit/working/WorkingProtectionSigning.h"

#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/working/WorkingProtectionCoding.h"

namespace kovi {
namespace {

template <class Record>
std::expected<std::string, AppAttestError> compactSignature(DeviceKeyService& keys, std::string_view keyId,
                                                            std::string_view purpose, std::string_view recordName,
                                                            const Record& record) {
  auto assertion = signRecord(keys, keyId, purpose, recordName, encodeRecord(record));
  if (!assertion) return std::unexpected(assertion.error());
  return compactAssertion(*assertion);
}

}  // namespace

std::expected<WorkingProtectionProofRequest, AppAttestError> signWorkingProtectionProof(
    DeviceKeyService& keys, std::string_view keyId, const WorkingProtectionProof& proof) {
  auto signature = compactSignature(keys, keyId, kWorkingProtectionProofPurpose, "proof", proof);
  if (!signature) return std::unexpected(signature.error());
  return WorkingProtectionProofRequest{WorkingProtectionAction::reportProtectionProof, proof, std::move(*signature)};
}

std::expected<WorkingProtectionTransitionRequest, AppAttestError> signWorkingProtectionTransition(
    DeviceKeyService& keys, std::string_view keyId, const WorkingProtectionTransition& transition) {
  auto signature = compactSignature(keys, keyId, kWorkingProtectionTransitionPurpose, "transition", transition);
  if (!signature) return std::unexpected(signature.error());
  return WorkingProtectionTransitionRequest{WorkingProtectionAction::reportProtectionTransition, transition,
                                            std::move(*signature)};
}

}  // namespace kovi
