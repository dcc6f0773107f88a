#include "KoviKit/working/WorkingCheckpointWriter.h"

#include <algorithm>

#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

// The timeline's segments cut to [spanStart, spanEnd]; a segment that
// overlaps the one before it keeps only its later part, so the result is
// sorted and disjoint whatever the timeline holds.
std::vector<WorkingCheckpoint::Segment> segmentsWithin(std::span<const WorkingTimeSegment> timeline,
                                                       UnixMillis spanStart, UnixMillis spanEnd) {
  std::vector<WorkingCheckpoint::Segment> segments;
  UnixMillis cursor = spanStart;
  for (const WorkingTimeSegment& segment : timeline) {
    const UnixMillis start = std::max(segment.startMS, cursor);
    const UnixMillis end = std::min(segment.endMS, spanEnd);
    if (start >= end) continue;
    segments.push_back({start, end, segment.kind});
    cursor = end;
  }
  return segments;
}

}  // namespace

WorkingCheckpointWriter::WorkingCheckpointWriter(std::string sessionID, std::string deviceID, std::int64_t epoch,
                                                 DeviceKeyService& keys, std::string keyId)
    : sessionID_(std::move(sessionID)),
      deviceID_(std::move(deviceID)),
      epoch_(epoch),
      keys_(keys),
      keyId_(std::move(keyId)),
      previousHash_(kWorkingCheckpointGenesisHash) {}

std::expected<WorkingSignedCheckpoint, WorkingCheckpointWriteError> WorkingCheckpointWriter::write(
    std::span<const WorkingTimeSegment> timeline, UnixMillis at, std::int64_t monotonicMS, bool final) {
  using Kind = WorkingCheckpointWriteError::Kind;
  if (finished_) return std::unexpected(WorkingCheckpointWriteError{Kind::finished, "the session's chain is closed"});
  if (at < previousAt_ || monotonicMS < previousMonotonicMS_) {
    return std::unexpected(
        WorkingCheckpointWriteError{Kind::clockMovedBackwards, "the checkpoint is earlier than the one before it"});
  }
  WorkingCheckpoint checkpoint{sessionID_,
                               deviceID_,
                               epoch_,
                               nextSequence_,
                               previousHash_,
                               at,
                               monotonicMS,
                               segmentsWithin(timeline, previousAt_, at),
                               final};
  auto assertion = signRecord(keys_, keyId_, kWorkingCheckpointPurpose, kWorkingCheckpointRecordName,
                              encodeRecord(checkpoint));
  if (!assertion) {
    return std::unexpected(WorkingCheckpointWriteError{Kind::signingFailed, assertion.error().detail});
  }
  previousHash_ = workingCheckpointHash(checkpoint);
  previousAt_ = at;
  previousMonotonicMS_ = monotonicMS;
  nextSequence_ = checkedAdd<std::int64_t>(nextSequence_, 1);
  finished_ = final;
  return WorkingSignedCheckpoint{std::move(checkpoint), compactAssertion(*assertion)};
}

}  // namespace kovi
