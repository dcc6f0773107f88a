#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingTimeSegment.h"

namespace kovi {

// The device's hash-chained statement of a session's classified time. Each
// checkpoint carries the segments since the one before it and names that
// one's hash, so the service can tell a missing or altered checkpoint from
// the chain alone.
struct WorkingCheckpoint {
  // One classified stretch [start, end) of the session, in Unix milliseconds.
  struct Segment {
    UnixMillis start = 0;
    UnixMillis end = 0;
    WorkingTimeSegment::Kind kind = WorkingTimeSegment::Kind::active;
    bool operator==(const Segment&) const = default;
  };

  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::int64_t sequence = 0;
  std::string previousHash;
  UnixMillis at = 0;
  std::int64_t monotonicMS = 0;
  std::vector<Segment> segments;
  bool final = false;

  bool operator==(const WorkingCheckpoint&) const = default;
};

// The purpose a checkpoint is signed under.
inline constexpr std::string_view kWorkingCheckpointPurpose = "kovi-working-checkpoint-v1";
// The name the checkpoint takes inside its signed {purpose, checkpoint} text.
inline constexpr std::string_view kWorkingCheckpointRecordName = "checkpoint";
// `previousHash` of the first checkpoint of a chain (`sequence` 0).
inline constexpr std::string_view kWorkingCheckpointGenesisHash =
    "0000000000000000000000000000000000000000000000000000000000000000";

// Writes the checkpoint's canonical JSON: keys in declared order, no
// whitespace, integers bare, minimal escapes. The same bytes as the generic
// canonical writer makes of the record's JSON, written straight from the
// record because verifying a chain hashes every checkpoint in it.
void writeCanonicalJson(CanonicalJsonWriter& writer, const WorkingCheckpoint& checkpoint);
std::string workingCheckpointCanonicalJson(const WorkingCheckpoint& checkpoint);
// SHA-256 of the canonical JSON, and its lowercase hex: what the next
// checkpoint's `previousHash` names.
Sha256Digest workingCheckpointDigest(const WorkingCheckpoint& checkpoint);
std::string workingCheckpointHash(const WorkingCheckpoint& checkpoint);

// Checkpoints are hashed, so their documents are strict: exactly the listed
// keys, nothing the hash would not cover.
template <>
struct JsonRecordFields<WorkingCheckpoint::Segment> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("start", &WorkingCheckpoint::Segment::start),
                                            field("end", &WorkingCheckpoint::Segment::end),
                                            field("kind", &WorkingCheckpoint::Segment::kind)};
};

template <>
struct JsonRecordFields<WorkingCheckpoint> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("sessionID", &WorkingCheckpoint::sessionID), field("deviceID", &WorkingCheckpoint::deviceID),
      field("epoch", &WorkingCheckpoint::epoch),         field("sequence", &WorkingCheckpoint::sequence),
      field("previousHash", &WorkingCheckpoint::previousHash), field("at", &WorkingCheckpoint::at),
      field("monotonicMS", &WorkingCheckpoint::monotonicMS),   field("segments", &WorkingCheckpoint::segments),
      field("final", &WorkingCheckpoint::final)};
};

}  // namespace kovi
