#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>

#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/working/WorkingSignedCheckpoint.h"
#include "KoviKit/working/WorkingTimeSegment.h"

namespace kovi {

// Why no checkpoint was written. Nothing of the writer changes on a
// failure, so the same checkpoint can be tried again.
struct WorkingCheckpointWriteError {
  enum class Kind {
    finished,              // the final checkpoint was already written
    clockMovedBackwards,   // `at` or the monotonic reading is before the last checkpoint's
    signingFailed,         // the device key gave no assertion
  };
  Kind kind;
  std::string reason;
  bool operator==(const WorkingCheckpointWriteError&) const = default;
};

// Turns a session's timeline into its chain of signed checkpoints on this
// Mac. Each checkpoint carries the timeline's segments since the previous
// checkpoint, cut to [previous `at`, `at`]; `sequence` rises by one from 0
// and `previousHash` names the checkpoint before (64 zeros for the first).
// Each is signed by the device key under "kovi-working-checkpoint-v1".
class WorkingCheckpointWriter {
 public:
  WorkingCheckpointWriter(std::string sessionID, std::string deviceID, std::int64_t epoch, DeviceKeyService& keys,
                          std::string keyId);

  // The next checkpoint at wall-clock `at` and monotonic reading
  // `monotonicMS`, over the engine's whole timeline so far (sorted, as the
  // engine keeps it). `final` closes the chain.
  std::expected<WorkingSignedCheckpoint, WorkingCheckpointWriteError> write(
      std::span<const WorkingTimeSegment> timeline, UnixMillis at, std::int64_t monotonicMS, bool final);

  std::int64_t nextSequence() const { return nextSequence_; }
  bool isFinished() const { return finished_; }

 private:
  std::string sessionID_;
  std::string deviceID_;
  std::int64_t epoch_;
  DeviceKeyService& keys_;
  std::string keyId_;
  std::int64_t nextSequence_ = 0;
  std::string previousHash_;
  UnixMillis previousAt_ = 0;
  std::int64_t previousMonotonicMS_ = 0;
  bool finished_ = false;
};

}  // namespace kovi
