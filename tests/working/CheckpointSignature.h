#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/working/WorkingSignedCheckpoint.h"

namespace kovi::testing {

// Checks a signed checkpoint the way the service does: the compact signature
// is base64 of 36 bytes of authenticator data (app identity hash, counter)
// and the DER signature, over the hash of {"purpose", "checkpoint"}. Returns
// the key's counter.
inline std::expected<std::uint32_t, std::string> verifyCheckpointSignature(const WorkingSignedCheckpoint& signed_,
                                                                           std::span<const std::uint8_t> publicKey,
                                                                           std::string_view appIdentity) {
  constexpr std::size_t kAuthenticatorDataSize = 36;
  const auto compact = base64Decode(signed_.signature);
  if (!compact || compact->size() <= kAuthenticatorDataSize) return std::unexpected(std::string("not a compact assertion"));
  const auto hash = purposeSignedHash(kWorkingCheckpointPurpose, kWorkingCheckpointRecordName,
                                      encodeRecord(signed_.checkpoint));
  if (!hash) return std::unexpected(hash.error());
  const auto split = compact->begin() + kAuthenticatorDataSize;
  return verifyAssertion(publicKey, appIdentity, *hash, AppAttestAssertion{{compact->begin(), split}, {split, compact->end()}});
}

}  // namespace kovi::testing
