#include "KoviKit/working/WorkingOfflineRuntime.h"

#include <algorithm>
#include <limits>

#include "KoviKit/working/WorkingOfflineLimit.h"

namespace kovi {
namespace {

using Kind = WorkingOfflineError::Kind;

std::unexpected<WorkingOfflineError> failure(Kind kind, std::string detail) {
  return std::unexpected(WorkingOfflineError{kind, std::move(detail)});
}

// `later − earlier`, absent when it does not fit: a stored runtime may carry
// any numbers, and a difference that overflows is a clock nobody can trust.
std::optional<std::int64_t> progress(std::int64_t later, std::int64_t earlier) {
  std::int64_t result = 0;
  if (__builtin_sub_overflow(later, earlier, &result)) return std::nullopt;
  return result;
}

}  // namespace

WorkingOfflineRuntime WorkingOfflineRuntime::install(const WorkingOfflineLease& verified,
                                                     const WorkingClockReading& now, std::string boot) {
  return WorkingOfflineRuntime{verified, verified.anchor, now.wall, now.monotonicMS, now.wall, now.monotonicMS,
                               std::move(boot)};
}

std::expected<void, WorkingOfflineError> WorkingOfflineRuntime::observe(const WorkingClockReading& now,
                                                                         std::string_view currentBoot) {
  if (!lease) return failure(Kind::unavailable, "no lease");
  if (currentBoot != bootID) return failure(Kind::clockDiscontinuity, "bootID");
  if (now.monotonicMS < lastMonotonic) return failure(Kind::clockDiscontinuity, "monotonic");
  const auto wallProgress = progress(now.wall, installedWall);
  const auto monotonicProgress = progress(now.monotonicMS, installedMonotonic);
  const auto drift = wallProgress && monotonicProgress ? progress(*wallProgress, *monotonicProgress) : std::nullopt;
  if (!drift || *drift > kClockToleranceMS || *drift < -kClockToleranceMS) {
    return failure(Kind::clockDiscontinuity, "wall");
  }
  lastWall = now.wall;
  lastMonotonic = now.monotonicMS;
  return {};
}

std::expected<UnixMillis, WorkingOfflineError> WorkingOfflineRuntime::countingEnd() const {
  if (!lease) return failure(Kind::unavailable, "no lease");
  // An anchor this close to the end of time has no 90 seconds left after it.
  const UnixMillis through = lease->anchor.through;
  const UnixMillis limit = through > std::numeric_limits<UnixMillis>::max() - workingMaximumOfflineMS
                              ? std::numeric_limits<UnixMillis>::max()
                              : through + workingMaximumOfflineMS;
  return std::min(lease->workUntil, limit);
}

std::expected<void, WorkingOfflineError> WorkingOfflineRuntime::mayCount(const WorkingClockReading& now,
                                                                          std::string_view currentBoot) {
  if (auto clocks = observe(now, currentBoot); !clocks) return clocks;
  if (now.wall >= lease->workUntil) return failure(Kind::expired, "workUntil");
  if (now.wall >= *countingEnd()) return failure(Kind::expired, "offlineLimit");
  if (head().sequence >= lease->maxSequence) return failure(Kind::unavailable, "maxSequence");
  return {};
}

namespace {

// The first field where `checkpoint` does not continue `head` of `lease`.
std::optional<std::string_view> chainBreak(const WorkingOfflineLease& lease, const WorkingOfflineAnchor& head,
                                           const WorkingCheckpoint& checkpoint) {
  if (checkpoint.sessionID != lease.sessionID) return "sessionID";
  if (checkpoint.deviceID != lease.deviceID) return "deviceID";
  if (checkpoint.epoch != lease.epoch) return "epoch";
  if (head.sequence == std::numeric_limits<std::int64_t>::max() || checkpoint.sequence != head.sequence + 1) {
    return "sequence";
  }
  if (checkpoint.previousHash != head.headHash) return "previousHash";
  if (checkpoint.at < head.through) return "at";
  if (checkpoint.monotonicMS < head.monotonicMS) return "monotonicMS";
  return std::nullopt;
}

}  // namespace

std::expected<void, WorkingOfflineError> WorkingOfflineRuntime::admitCheckpoint(const WorkingCheckpoint& checkpoint,
                                                                                 const WorkingClockReading& now,
                                                                                 std::string_view currentBoot) {
  WorkingOfflineRuntime next = *this;
  if (auto clocks = next.observe(now, currentBoot); !clocks) return clocks;
  if (const auto field = chainBreak(*lease, head(), checkpoint)) return failure(Kind::checkpointChain, std::string(*field));
  if (checkpoint.sequence > lease->maxSequence) return failure(Kind::unavailable, "maxSequence");
  const UnixMillis end = *countingEnd();
  if (checkpoint.at > end) return failure(Kind::expired, "at");
  for (const WorkingCheckpoint::Segment& segment : checkpoint.segments) {
    if (segment.end > end) return failure(Kind::expired, "segments");
  }
  next.anchor = WorkingOfflineAnchor{checkpoint.sequence, workingCheckpointHash(checkpoint), checkpoint.at,
                                     checkpoint.monotonicMS};
  *this = std::move(next);
  return {};
}

}  // namespace kovi
