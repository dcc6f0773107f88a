#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingCheckpointChain.h"
#include "KoviKit/working/WorkingSignedCheckpoint.h"

namespace kovi {

// The key a Mac signs its checkpoints with, as a verifier is given it: the
// device it belongs to, the app identity its assertions name, and its public
// key (base64 DER SubjectPublicKeyInfo in JSON).
struct WorkingCheckpointKey {
  std::string deviceID;
  std::string appIdentity;
  std::vector<std::uint8_t> publicKey;
  bool operator==(const WorkingCheckpointKey&) const = default;
};

template <>
struct JsonRecordFields<WorkingCheckpointKey> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("deviceID", &WorkingCheckpointKey::deviceID),
                                            field("appIdentity", &WorkingCheckpointKey::appIdentity),
                                            field("publicKey", &WorkingCheckpointKey::publicKey)};
};

inline constexpr std::string_view kWorkingChainUnverifiableMessage = "Oturum kaydı doğrulanamadı";
inline constexpr std::string_view kWorkingChainAwaitingMacMessage = "Mac’in son oturum kaydı bekleniyor.";

// Checks a checkpoint's signature the way the service does: the compact
// assertion (base64 of 36 bytes of authenticator data, then the DER
// signature) over the hash of {"purpose": "kovi-working-checkpoint-v1",
// "checkpoint": …}. Returns the key's counter.
std::expected<std::uint32_t, std::string> verifyWorkingCheckpointSignature(const WorkingSignedCheckpoint& signed_,
                                                                           const WorkingCheckpointKey& key);

// The verdict on a session's signed checkpoints. An inconsistent chain, or
// none, is reported as the unsigned chain would be. A consistent chain with
// a checkpoint not signed by `key` (a bad signature, another device, a key
// counter that does not rise along the chain) is `unverifiable` ("Oturum
// kaydı doğrulanamadı") and accepts no time. Otherwise the chain's verdict
// stands, and a pending one names the Mac as the writer awaited.
WorkingCheckpointChainReport verifySignedWorkingCheckpointChain(std::span<const WorkingSignedCheckpoint> checkpoints,
                                                                const WorkingCheckpointKey& key);

}  // namespace kovi
