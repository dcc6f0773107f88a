#pragma once

#include <optional>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacFocus2EnforcementPlan.h"
#include "KoviMacHolds/MacHoldsAction.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsSchedule.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// One evaluation of the engine with everything it looked at: whether the
// snapshot is active, the windows and due hold at `now`, the plan of that hold
// (computed even while the main app runs, so a person can see what would be
// enforced) and the action the engine takes.
struct MacHoldsEvaluation {
  bool active = false;
  std::vector<MacHoldsSchedule::Window> windows;
  MacHoldsDue due;
  std::optional<MacFocus2EnforcementPlan> plan;
  MacHoldsAction action = MacHoldsAction::exit();
};

// The platform-free part of an engine evaluation. A snapshot that failed to
// load counts as none, so the action is exit; an active snapshot leads to
// standBy while the main app runs, otherwise to hold when the due hold has a
// plan and standBy when it has none.
MacHoldsEvaluation evaluateMacHolds(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning);

// The action alone, for the engine.
MacHoldsAction decideMacHoldsAction(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning);

}  // namespace kovi::holds
