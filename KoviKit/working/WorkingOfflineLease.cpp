#include "KoviKit/working/WorkingOfflineLease.h"

#include "KoviKit/foundation/Json.h"

namespace kovi {

Decoded<WorkingOfflineEnvelope> decodeWorkingOfflineEnvelope(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  auto envelope = JsonView(*document).as<WorkingOfflineEnvelope>();
  if (!envelope) return std::unexpected(envelope.error());
  const WorkingOfflineLease& lease = envelope->lease;
  if (lease.version != WorkingOfflineLease::kVersion) {
    return std::unexpected(DecodeError{"lease.version", "unsupported version " + std::to_string(lease.version)});
  }
  if (lease.workUntil <= lease.issuedAt) {
    return std::unexpected(DecodeError{"lease.workUntil", "not after issuedAt"});
  }
  if (lease.reconcileBy < lease.workUntil) {
    return std::unexpected(DecodeError{"lease.reconcileBy", "before workUntil"});
  }
  if (lease.maxSequence < lease.anchor.sequence) {
    return std::unexpected(DecodeError{"lease.maxSequence", "behind anchor.sequence"});
  }
  return envelope;
}

}  // namespace kovi
