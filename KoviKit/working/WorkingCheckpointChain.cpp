#include "KoviKit/working/WorkingCheckpointChain.h"

#include <algorithm>
#include <vector>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

using Status = WorkingCheckpointChainReport::Status;

WorkingCheckpointChainReport broken(std::int64_t sequence, std::string reason) {
  return {Status::inconsistent, std::string(kWorkingChainInconsistentMessage), 0, std::nullopt, sequence,
          "sequence " + std::to_string(sequence) + ": " + std::move(reason)};
}

bool sameSession(const WorkingCheckpoint& a, const WorkingCheckpoint& b) {
  return a.sessionID == b.sessionID && a.deviceID == b.deviceID && a.epoch == b.epoch;
}

// Why `checkpoint`'s segments do not fit its span [spanStart, at], or empty.
std::string segmentProblem(const WorkingCheckpoint& checkpoint, UnixMillis spanStart) {
  UnixMillis cursor = spanStart;
  for (const WorkingCheckpoint::Segment& segment : checkpoint.segments) {
    if (segment.start < cursor) return "a segment starts before the end of the one before it or the previous checkpoint";
    if (segment.end <= segment.start) return "a segment ends before it starts";
    if (segment.end > checkpoint.at) return "a segment ends after the checkpoint";
    cursor = segment.end;
  }
  return {};
}

// Whether `hash` is the lowercase hex of `digest`, compared in place: the
// chain compares one link a checkpoint and spares each a hex string.
bool isHexOf(std::string_view hash, const Sha256Digest& digest) {
  static constexpr char digits[] = "0123456789abcdef";
  if (hash.size() != 2 * digest.size()) return false;
  for (std::size_t index = 0; index < digest.size(); ++index) {
    if (hash[2 * index] != digits[digest[index] >> 4] || hash[2 * index + 1] != digits[digest[index] & 0x0f]) {
      return false;
    }
  }
  return true;
}

}  // namespace

WorkingCheckpointChainReport verifyWorkingCheckpointChain(std::span<const WorkingCheckpoint> checkpoints) {
  if (checkpoints.empty()) return {Status::none, std::string(kWorkingChainNotStartedMessage), 0, {}, {}, {}};

  std::vector<const WorkingCheckpoint*> chain;
  chain.reserve(checkpoints.size());
  for (const WorkingCheckpoint& checkpoint : checkpoints) chain.push_back(&checkpoint);
  std::ranges::stable_sort(chain, {}, &WorkingCheckpoint::sequence);

  Sha256Digest previousDigest{};
  const WorkingCheckpoint* previous = nullptr;
  std::int64_t accepted = 0;
  std::optional<UnixMillis> through;
  for (std::size_t index = 0; index < chain.size(); ++index) {
    const WorkingCheckpoint& checkpoint = *chain[index];
    const auto expectedSequence = static_cast<std::int64_t>(index);
    if (checkpoint.sequence < expectedSequence) return broken(checkpoint.sequence, "appears more than once");
    if (checkpoint.sequence > expectedSequence) {
      return broken(checkpoint.sequence, "sequence " + std::to_string(expectedSequence) + " is missing");
    }
    if (checkpoint.sessionID.empty() || checkpoint.deviceID.empty()) {
      return broken(checkpoint.sequence, "names no session or device");
    }
    if (checkpoint.epoch < 0 || checkpoint.monotonicMS < 0 || checkpoint.at < 0) {
      return broken(checkpoint.sequence, "carries a negative epoch, clock reading or time");
    }
    if (previous != nullptr) {
      if (previous->final) return broken(checkpoint.sequence, "follows the final checkpoint");
      if (!sameSession(checkpoint, *previous)) {
        return broken(checkpoint.sequence, "names another session, device or epoch");
      }
      if (checkpoint.at < previous->at || checkpoint.monotonicMS < previous->monotonicMS) {
        return broken(checkpoint.sequence, "its clock runs backwards");
      }
    }
    const bool linked = previous == nullptr ? checkpoint.previousHash == kWorkingCheckpointGenesisHash
                                            : isHexOf(checkpoint.previousHash, previousDigest);
    if (!linked) {
      return broken(checkpoint.sequence, previous == nullptr
                                             ? "previousHash is not the chain's starting hash"
                                             : "previousHash does not match the hash of the checkpoint before");
    }
    if (auto problem = segmentProblem(checkpoint, previous == nullptr ? 0 : previous->at); !problem.empty()) {
      return broken(checkpoint.sequence, std::move(problem));
    }
    for (const WorkingCheckpoint::Segment& segment : checkpoint.segments) {
      // Segments are sorted, disjoint and end by the last checkpoint's `at`,
      // so their sum cannot exceed it; the check guards that reasoning.
      if (segment.kind == WorkingTimeSegment::Kind::active) {
        accepted = checkedAdd(accepted, checkedSub(segment.end, segment.start));
      }
      through = segment.end;
    }
    previousDigest = workingCheckpointDigest(checkpoint);
    previous = &checkpoint;
  }
  if (previous->final) return {Status::verified, std::string(kWorkingChainVerifiedMessage), accepted, through, {}, {}};
  return {Status::pending, std::string(kWorkingChainPendingMessage), accepted, through, {}, {}};
}

}  // namespace kovi
