#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingBootIdentity.h"
#include "KoviKit/working/WorkingCheckpoint.h"
#include "KoviKit/working/WorkingOfflineError.h"
#include "KoviKit/working/WorkingOfflineLease.h"

namespace kovi {

// What the Mac keeps while an offline lease is installed: the lease, the head
// of the checkpoint chain written offline so far (the lease's anchor until the
// first offline checkpoint), the clocks at installation and at the last
// observation, and the boot the lease was installed in.
//
// Offline time is trusted only while the machine provably ran on: the same
// boot, a monotonic clock that never went back, and wall-clock progress that
// matches monotonic progress since installation within
// `kClockToleranceMS`. Two seconds is far above what clock discipline slews
// in a lease's lifetime (at most 0.05 % of 90 seconds) and far below any
// deliberate change of the clock that could add countable time.
struct WorkingOfflineRuntime {
  static constexpr std::int64_t kClockToleranceMS = 2'000;

  std::optional<WorkingOfflineLease> lease;
  std::optional<WorkingOfflineAnchor> anchor;
  UnixMillis installedWall = 0;
  std::int64_t installedMonotonic = 0;
  UnixMillis lastWall = 0;
  std::int64_t lastMonotonic = 0;
  std::string bootID;

  bool operator==(const WorkingOfflineRuntime&) const = default;

  // A runtime for a verified lease, installed at `now` in boot `boot`.
  static WorkingOfflineRuntime install(const WorkingOfflineLease& verified, const WorkingClockReading& now,
                                       std::string boot);

  // Checks the clocks against the installation and remembers `now`:
  // `clockDiscontinuity` names "bootID", "monotonic" (went back) or "wall"
  // (wall and monotonic progress differ by more than the tolerance); nothing
  // is remembered then. `unavailable` without a lease.
  std::expected<void, WorkingOfflineError> observe(const WorkingClockReading& now, std::string_view currentBoot);

  // The instant offline counting stops: the lease's `workUntil` or 90 seconds
  // after the last state the service verified (the anchor's `through`),
  // whichever comes first. `unavailable` without a lease.
  std::expected<UnixMillis, WorkingOfflineError> countingEnd() const;

  // Whether time may still be counted at `now`: the clocks hold (`observe`),
  // `now` is before `countingEnd` (`expired`, naming "workUntil" or
  // "offlineLimit"), and another checkpoint fits under `maxSequence`
  // (`unavailable`, naming "maxSequence").
  std::expected<void, WorkingOfflineError> mayCount(const WorkingClockReading& now, std::string_view currentBoot);

  // Takes a checkpoint written offline at `now` into the chain. It must be
  // for the lease's session, device and epoch and continue the current head
  // (`sequence` one more, `previousHash` the head's hash), else
  // `checkpointChain` naming the field; fit under `maxSequence`
  // (`unavailable`); and neither its time nor any segment may reach past
  // `countingEnd` (`expired`). The clocks are checked as by `observe`. On
  // success the checkpoint becomes the head; on failure nothing changes.
  std::expected<void, WorkingOfflineError> admitCheckpoint(const WorkingCheckpoint& checkpoint,
                                                           const WorkingClockReading& now,
                                                           std::string_view currentBoot);

  // The current head of the offline chain.
  const WorkingOfflineAnchor& head() const { return anchor ? *anchor : lease->anchor; }
};

template <>
struct JsonRecordFields<WorkingOfflineRuntime> : StrictJsonRecord {
  using R = WorkingOfflineRuntime;
  static constexpr auto fields =
      std::tuple{field("lease", &R::lease),
                 field("anchor", &R::anchor),
                 field("installedWall", &R::installedWall),
                 field("installedMonotonic", &R::installedMonotonic),
                 field("lastWall", &R::lastWall),
                 field("lastMonotonic", &R::lastMonotonic),
                 field("bootID", &R::bootID)};
};

}  // namespace kovi
