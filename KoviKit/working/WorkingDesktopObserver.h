#pragma once

#include <optional>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingDesktopSignals.h"
#include "KoviKit/working/WorkingSessionEvent.h"

namespace kovi {

// Turns successive desktop readings into the session engine's events: the
// readiness they show (an absent signal counts as not ready, which suspends),
// user activity whenever input is newer than the last seen, and sleep and
// wake when the machine prepares for sleep and comes back. Protections this
// desktop does not run (app and website blocking, iPhone protection, a
// server lease) are reported as not ready.
class WorkingDesktopObserver {
 public:
  // The events for `reading` taken at `now`, in order. Readiness changes come
  // as `readiness` events (the first reading always); starting the session is
  // the caller's, with `readinessOf` the reading.
  std::vector<WorkingSessionEvent> observe(const WorkingDesktopReading& reading, UnixMillis now);

  static WorkingSessionReadiness readinessOf(const WorkingDesktopReading& reading);

 private:
  std::optional<UnixMillis> lastInputAt_;
  std::optional<WorkingSessionReadiness> readiness_;  // as last reported
  bool sleeping_ = false;
};

}  // namespace kovi
