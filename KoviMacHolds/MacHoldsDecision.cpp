#include "KoviMacHolds/MacHoldsDecision.h"

#include "KoviMacHolds/MacHoldsScheduleParts.h"

namespace kovi::holds {
namespace {

// The engine's choice once it knows whether the snapshot is active and, for
// an active one, the due hold and its plan.
MacHoldsAction actionFor(bool active, bool mainAppRunning, const MacHoldsDue& due,
                         std::optional<MacFocus2EnforcementPlan> plan) {
  if (!active) return MacHoldsAction::exit();
  // The main app enforces holds itself while it runs.
  if (mainAppRunning || !plan) return MacHoldsAction::standBy();
  return MacHoldsAction::hold(due, std::move(*plan));
}

// A file that is missing, unreadable, too large, undecodable or of another
// version is no snapshot: a stale agent must not keep holding applications
// after the main app withdrew the schedule.
const MacHoldsSnapshot* snapshotOf(const MacHoldsSnapshotLoad& load) { return load ? &*load : nullptr; }

}  // namespace

MacHoldsEvaluation evaluateMacHolds(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning) {
  MacHoldsEvaluation evaluation;
  const MacHoldsSnapshot* current = snapshotOf(snapshot);
  const MacHoldsDayClock clock(calendar);
  const auto moment = MacHoldsSchedule::momentAt(now, clock);
  evaluation.active = MacHoldsSchedule::isActiveAt(current, moment);
  if (current != nullptr) {
    evaluation.windows = MacHoldsSchedule::windowsAt(*current, moment);
    evaluation.due = MacHoldsSchedule::dueAt(*current, evaluation.windows, moment);
    evaluation.plan = MacHoldsSchedule::plan(evaluation.due, current->keepCommunication, moment.today);
  }
  evaluation.action = actionFor(evaluation.active, mainAppRunning, evaluation.due, evaluation.plan);
  return evaluation;
}

MacHoldsAction decideMacHoldsAction(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning) {
  // The engine's path every few seconds: only what the action needs.
  const MacHoldsSnapshot* current = snapshotOf(snapshot);
  const MacHoldsDayClock clock(calendar);
  const auto moment = MacHoldsSchedule::momentAt(now, clock);
  const bool active = MacHoldsSchedule::isActiveAt(current, moment);
  if (!active || mainAppRunning) return actionFor(active, mainAppRunning, MacHoldsDue::none(), std::nullopt);
  const MacHoldsDue due = MacHoldsSchedule::dueAt(*current, MacHoldsSchedule::windowsAt(*current, moment), moment);
  return actionFor(active, mainAppRunning, due, MacHoldsSchedule::plan(due, current->keepCommunication, moment.today));
}

}  // namespace kovi::holds
