#pragma once

#include <vector>

#include "KoviKit/working/WorkingSessionState.h"

namespace kovi {

struct WorkingSessionPolicy;

// What this Mac can currently show about the conditions of counted work.
struct WorkingSessionReadiness {
  bool activityMonitoring = false;
  bool deviceUnlocked = false;
  bool displayAwake = false;
  bool appBlocking = false;
  bool websiteBlocking = false;
  bool phoneProtection = false;
  bool serverLease = false;

  bool operator==(const WorkingSessionReadiness&) const = default;
};

// Every reason `readiness` keeps work from counting under `policy`, in the
// enumeration's order. Activity monitoring, an unlocked device and an awake
// display are required by every policy (without them nothing on this Mac can
// show that work happens); the four protections only when the policy asks.
std::vector<WorkingSuspensionReason> workingBlockingReasons(const WorkingSessionPolicy& policy,
                                                            const WorkingSessionReadiness& readiness);

}  // namespace kovi
