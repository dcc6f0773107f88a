#include "KoviMacHolds/MacHoldsDecision.h"

namespace kovi::holds {

MacHoldsEvaluation evaluateMacHolds(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning) {
  MacHoldsEvaluation evaluation;
  // A file that is missing, unreadable, too large, undecodable or of another
  // version is no snapshot: a stale agent must not keep holding applications
  // after the main app withdrew the schedule.
  const MacHoldsSnapshot* current = snapshot ? &*snapshot : nullptr;
  evaluation.active = MacHoldsSchedule::isActive(current, now, calendar);
  if (current != nullptr) {
    evaluation.windows = MacHoldsSchedule::windows(*current, now, calendar);
    evaluation.due = MacHoldsSchedule::due(*current, now, calendar);
    evaluation.plan = MacHoldsSchedule::plan(evaluation.due, current->keepCommunication, calendar.dayString(now));
  }
  if (!evaluation.active) {
    evaluation.action = MacHoldsAction::exit();
  } else if (mainAppRunning || !evaluation.plan) {
    // The main app enforces holds itself while it runs.
    evaluation.action = MacHoldsAction::standBy();
  } else {
    evaluation.action = MacHoldsAction::hold(evaluation.due, *evaluation.plan);
  }
  return evaluation;
}

MacHoldsAction decideMacHoldsAction(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning) {
  return evaluateMacHolds(snapshot, now, calendar, mainAppRunning).action;
}

}  // namespace kovi::holds
