#pragma once

#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestError.h"
#include "KoviKit/evidence/V6EvidencePendingStore.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "KoviKit/evidence/WalkingEvidenceLane.h"
#include "KoviKit/native/NativeAccountError.h"

namespace kovi {

template <>
struct EnumNames<WalkingEvidenceFailure> {
  static constexpr std::array table{
      std::pair{WalkingEvidenceFailure::noData, std::string_view("noData")},
      std::pair{WalkingEvidenceFailure::attestationUnsupported, std::string_view("attestationUnsupported")},
      std::pair{WalkingEvidenceFailure::attestation, std::string_view("attestation")},
      std::pair{WalkingEvidenceFailure::rejected, std::string_view("rejected")},
      std::pair{WalkingEvidenceFailure::transient, std::string_view("transient")},
  };
};

// Why signing or sending walking evidence stopped: the failure class that
// drives the backoff, the code (the service's, or this device's own), the
// Turkish message the user reads, and an English detail for logs and the
// tool. Never holds key material or the token.
struct V6EvidenceSubmissionError {
  WalkingEvidenceFailure failure = WalkingEvidenceFailure::transient;
  std::string code;
  std::string message;
  std::string detail;
  bool operator==(const V6EvidenceSubmissionError&) const = default;

  static V6EvidenceSubmissionError fromService(const NativeAccountError& error);
  static V6EvidenceSubmissionError fromWalking(const WalkingEvidenceError& error);
  static V6EvidenceSubmissionError fromDeviceKey(const AppAttestError& error);
  static V6EvidenceSubmissionError fromPendingStore(const V6EvidencePendingStore::Error& error);
};

// The failure class of an evidence code: "attestation_unsupported" alone is
// `attestationUnsupported`; the other key, challenge and assertion codes are
// `attestation`; request, payload, revision and writer codes are `rejected`;
// the codes of a day without closed data are `noData`.
WalkingEvidenceFailure walkingEvidenceFailure(std::string_view code);

// Whether a pending submission refused with `code` can never be accepted, so
// it is dropped and its days re-read: the request, payload and revision codes
// and every refusal of the key or its assertion.
bool dropsPendingRecord(std::string_view code);

}  // namespace kovi
