#pragma once

#include <expected>
#include <string_view>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingOfflineError.h"
#include "KoviKit/working/WorkingOfflineLease.h"
#include "KoviKit/working/WorkingOfflineServerKeys.h"

namespace kovi {

// Accepts an offline lease only when all of these hold, checked in this order:
// the envelope decodes strictly (else `invalidEnvelope`, with the key path and
// reason); its `serverKeyID` names a key of `serverKeys` and its signature
// verifies under that key (else `invalidSignature`); every field of `binding`
// equals the lease's (else `bindingMismatch`, naming the first field that
// differs in the binding's order, "anchor.headHash" for the anchor's); and
// `now` is before `workUntil` (else `expired`).
std::expected<WorkingOfflineLease, WorkingOfflineError> verifyWorkingOfflineEnvelope(
    std::string_view envelopeText, const WorkingOfflineServerKeys& serverKeys, const WorkingOfflineBinding& binding,
    UnixMillis now);

// The exact bytes the server signs for `lease`.
std::string workingOfflineLeaseSignedText(const WorkingOfflineLease& lease);

}  // namespace kovi
