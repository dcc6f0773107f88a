#include "KoviKit/working/WorkingCheckpointSignature.h"

#include <algorithm>
#include <optional>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/foundation/Base64.h"

namespace kovi {
namespace {

// SHA-256 of the app identity, then a 4-byte counter.
constexpr std::size_t kAuthenticatorDataSize = 36;

WorkingCheckpointChainReport unverifiable(std::int64_t sequence, std::string reason) {
  return {WorkingCheckpointChainReport::Status::unverifiable, std::string(kWorkingChainUnverifiableMessage), 0,
          std::nullopt, sequence, "sequence " + std::to_string(sequence) + ": " + std::move(reason)};
}

}  // namespace

std::expected<std::uint32_t, std::string> verifyWorkingCheckpointSignature(const WorkingSignedCheckpoint& signed_,
                                                                           const WorkingCheckpointKey& key) {
  const auto compact = base64Decode(signed_.signature);
  if (!compact || compact->size() <= kAuthenticatorDataSize) {
    return std::unexpected(std::string("the signature is not a compact assertion"));
  }
  const auto hash =
      purposeSignedHash(kWorkingCheckpointPurpose, kWorkingCheckpointRecordName, encodeRecord(signed_.checkpoint));
  if (!hash) return std::unexpected(hash.error());
  const auto split = compact->begin() + kAuthenticatorDataSize;
  return verifyAssertion(key.publicKey, key.appIdentity, *hash,
                         AppAttestAssertion{{compact->begin(), split}, {split, compact->end()}});
}

WorkingCheckpointChainReport verifySignedWorkingCheckpointChain(std::span<const WorkingSignedCheckpoint> checkpoints,
                                                                const WorkingCheckpointKey& key) {
  std::vector<WorkingCheckpoint> chain;
  chain.reserve(checkpoints.size());
  for (const WorkingSignedCheckpoint& signed_ : checkpoints) chain.push_back(signed_.checkpoint);
  WorkingCheckpointChainReport report = verifyWorkingCheckpointChain(chain);
  using Status = WorkingCheckpointChainReport::Status;
  if (report.status != Status::verified && report.status != Status::pending) return report;

  // The chain is consistent, so its sequences run from 0 without repeats.
  std::vector<const WorkingSignedCheckpoint*> bySequence;
  bySequence.reserve(checkpoints.size());
  for (const WorkingSignedCheckpoint& signed_ : checkpoints) bySequence.push_back(&signed_);
  std::ranges::sort(bySequence, {}, [](const WorkingSignedCheckpoint* signed_) { return signed_->checkpoint.sequence; });
  std::optional<std::uint32_t> previousCounter;
  for (const WorkingSignedCheckpoint* signed_ : bySequence) {
    const WorkingCheckpoint& checkpoint = signed_->checkpoint;
    if (checkpoint.deviceID != key.deviceID) {
      return unverifiable(checkpoint.sequence, "written by " + checkpoint.deviceID + ", the key is " + key.deviceID + "'s");
    }
    const auto counter = verifyWorkingCheckpointSignature(*signed_, key);
    if (!counter) return unverifiable(checkpoint.sequence, counter.error());
    // Each signature uses the key once more; a counter that does not rise is
    // an assertion replayed from elsewhere.
    if (previousCounter && *counter <= *previousCounter) {
      return unverifiable(checkpoint.sequence, "the key's counter did not rise");
    }
    previousCounter = *counter;
  }
  if (report.status == Status::pending) report.message = kWorkingChainAwaitingMacMessage;
  return report;
}

}  // namespace kovi
