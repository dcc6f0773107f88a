#include "KoviKit/working/WorkingOfflineLeaseVerification.h"

#include <optional>
#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/foundation/Base64.h"

namespace kovi {
namespace {

using Kind = WorkingOfflineError::Kind;

WorkingOfflineError failure(Kind kind, std::string detail) { return {kind, std::move(detail)}; }

// The first field, in the binding's order, where the lease differs.
std::optional<std::string_view> firstMismatch(const WorkingOfflineLease& lease, const WorkingOfflineBinding& binding) {
  if (lease.accountID != binding.accountID) return "accountID";
  if (lease.roomID != binding.roomID) return "roomID";
  if (lease.sessionID != binding.sessionID) return "sessionID";
  if (lease.deviceID != binding.deviceID) return "deviceID";
  if (lease.epoch != binding.epoch) return "epoch";
  if (lease.rulesHash != binding.rulesHash) return "rulesHash";
  if (lease.deviceKeyHash != binding.deviceKeyHash) return "deviceKeyHash";
  if (lease.anchor.sequence != binding.anchor.sequence) return "anchor.sequence";
  if (lease.anchor.headHash != binding.anchor.headHash) return "anchor.headHash";
  if (lease.anchor.through != binding.anchor.through) return "anchor.through";
  if (lease.anchor.monotonicMS != binding.anchor.monotonicMS) return "anchor.monotonicMS";
  return std::nullopt;
}

}  // namespace

std::string workingOfflineLeaseSignedText(const WorkingOfflineLease& lease) {
  // A lease holds strings and integers only, so its canonical text always exists.
  return purposeSignedText(WorkingOfflineLease::kSigningPurpose, "lease", encodeRecord(lease)).value();
}

std::expected<WorkingOfflineLease, WorkingOfflineError> verifyWorkingOfflineEnvelope(
    std::string_view envelopeText, const WorkingOfflineServerKeys& serverKeys, const WorkingOfflineBinding& binding,
    UnixMillis now) {
  auto envelope = decodeWorkingOfflineEnvelope(envelopeText);
  if (!envelope) return std::unexpected(failure(Kind::invalidEnvelope, envelope.error().message()));
  const WorkingOfflineLease& lease = envelope->lease;

  const auto key = serverKeys.keys.find(lease.serverKeyID);
  if (key == serverKeys.keys.end()) return std::unexpected(failure(Kind::invalidSignature, "unknown serverKeyID"));
  const auto signature = base64Decode(envelope->signature);
  if (!signature) return std::unexpected(failure(Kind::invalidSignature, "signature is not base64"));
  if (!verifyP256Signature(key->second, workingOfflineLeaseSignedText(lease), *signature)) {
    return std::unexpected(failure(Kind::invalidSignature, "signature does not verify"));
  }

  if (const auto field = firstMismatch(lease, binding)) {
    return std::unexpected(failure(Kind::bindingMismatch, std::string(*field)));
  }
  if (now >= lease.workUntil) return std::unexpected(failure(Kind::expired, "workUntil"));
  return lease;
}

}  // namespace kovi
