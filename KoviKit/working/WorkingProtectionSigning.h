#pragma once

#include <array>
#include <expected>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/attest/AppAttestError.h"
#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingProtectionProof.h"
#include "KoviKit/working/WorkingProtectionTransition.h"

namespace kovi {

// The purposes protection records are signed under: the signed text of a
// proof is the canonical JSON of {"purpose", "proof"}, of a transition
// {"purpose", "transition"}.
inline constexpr std::string_view kWorkingProtectionProofPurpose = "kovi-working-protection-v1";
inline constexpr std::string_view kWorkingProtectionTransitionPurpose = "kovi-working-protection-transition-v1";

// What the server is asked to do with a signed protection record: take a
// proof as the device's current protection state, or take a transition as a
// change the device made on its own account.
enum class WorkingProtectionAction { reportProtectionProof, reportProtectionTransition };

template <>
struct EnumNames<WorkingProtectionAction> {
  static constexpr std::array table{
      std::pair{WorkingProtectionAction::reportProtectionProof, std::string_view("report_protection_proof")},
      std::pair{WorkingProtectionAction::reportProtectionTransition,
                std::string_view("report_protection_transition")},
  };
};

// {action, proof, signature}: `signature` is the compact assertion over the
// signed text.
struct WorkingProtectionProofRequest {
  WorkingProtectionAction action = WorkingProtectionAction::reportProtectionProof;
  WorkingProtectionProof proof;
  std::string signature;
  bool operator==(const WorkingProtectionProofRequest&) const = default;
};

// {action, transition, signature}.
struct WorkingProtectionTransitionRequest {
  WorkingProtectionAction action = WorkingProtectionAction::reportProtectionTransition;
  WorkingProtectionTransition transition;
  std::string signature;
  bool operator==(const WorkingProtectionTransitionRequest&) const = default;
};

// Signs the record with the device key `keyId` under its purpose.
std::expected<WorkingProtectionProofRequest, AppAttestError> signWorkingProtectionProof(
    DeviceKeyService& keys, std::string_view keyId, const WorkingProtectionProof& proof);
std::expected<WorkingProtectionTransitionRequest, AppAttestError> signWorkingProtectionTransition(
    DeviceKeyService& keys, std::string_view keyId, const WorkingProtectionTransition& transition);

}  // namespace kovi
