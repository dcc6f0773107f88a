#include "KoviKit/evidence/V6EvidenceSubmissionError.h"

namespace kovi {

WalkingEvidenceFailure walkingEvidenceFailure(std::string_view code) {
  if (code == "attestation_unsupported") return WalkingEvidenceFailure::attestationUnsupported;
  if (code.starts_with("attestation_") || code.starts_with("assertion_") || code.starts_with("challenge_") ||
      code.starts_with("device_key_")) {
    return WalkingEvidenceFailure::attestation;
  }
  if (code == walkingErrorCode::noClosedBucket || code == walkingErrorCode::noReadableData) {
    return WalkingEvidenceFailure::noData;
  }
  return WalkingEvidenceFailure::rejected;
}

bool dropsPendingRecord(std::string_view code) {
  if (code == "walking_evidence_request_conflict" || code == "walking_evidence_request_rejected" ||
      code == "walking_evidence_payload_too_large" || code == walkingErrorCode::revisionConflict) {
    return true;
  }
  // A refused key or assertion will be refused again: the record's signature is spent.
  return walkingEvidenceFailure(code) == WalkingEvidenceFailure::attestation && code != "challenge_expired";
}

V6EvidenceSubmissionError V6EvidenceSubmissionError::fromService(const NativeAccountError& error) {
  V6EvidenceSubmissionError result;
  result.message = error.message(v6EvidenceErrorTable());
  result.detail = error.description();
  if (const auto code = error.code()) {
    result.code = std::string(*code);
    result.failure = error.kind() == NativeAccountError::Case::service ? walkingEvidenceFailure(*code)
                                                                       : WalkingEvidenceFailure::rejected;
  } else {
    // No answer, an answer that did not decode, or too many requests: worth
    // trying again later.
    result.code = std::string(enumName(error.kind()));
    result.failure = error.kind() == NativeAccountError::Case::signInRequired ? WalkingEvidenceFailure::rejected
                                                                              : WalkingEvidenceFailure::transient;
  }
  return result;
}

V6EvidenceSubmissionError V6EvidenceSubmissionError::fromWalking(const WalkingEvidenceError& error) {
  return {walkingEvidenceFailure(error.code), error.code, error.message(), error.detail};
}

V6EvidenceSubmissionError V6EvidenceSubmissionError::fromDeviceKey(const AppAttestError& error) {
  return {walkingEvidenceFailure(error.code), error.code, v6EvidenceErrorTable().messageFor(error.code), error.detail};
}

V6EvidenceSubmissionError V6EvidenceSubmissionError::fromPendingStore(const V6EvidencePendingStore::Error& error) {
  // A pending record that cannot be kept or read blocks new measurements
  // like one that waits for its answer.
  return {WalkingEvidenceFailure::rejected, std::string(walkingErrorCode::evidencePending),
          v6EvidenceErrorTable().messageFor(walkingErrorCode::evidencePending),
          std::string(enumName(error.failure)) + ": " + error.detail};
}

}  // namespace kovi
