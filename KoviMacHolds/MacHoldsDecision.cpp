#include "KoviMacHolds/MacHoldsDecision.h"

#include "KoviMacHolds/MacHoldsScheduleParts.h"

namespace kovi::holds {

MacHoldsEvaluation evaluateMacHolds(const MacHoldsSnapshotLoad& snapshot, Date now, const Calendar& calendar,
                                    bool mainAppRunning) {
  MacHoldsEvaluation evaluation;
  // A file that is missing, unreadable, too large, undecodable or of another
  // version is no snapshot: a stale agent must not keep holding applications
  // after the main app withdrew the schedule.
  const MacHoldsSnapshot* current = snapshot ? &*snapshot : nullptr;
  const MacHoldsDayClock clock(calendar);
  const auto moment = MacHoldsSchedule::momentAt(now, clock);
  evaluation.active = MacHoldsSchedule::isActiveAt(current, moment);
  if (current != nullptr) {
    evaluation.windows = MacHoldsSchedule::windowsAt(*current, moment);
    evaluation.due = MacHoldsSchedule::dueAt(*current, evaluation.windows, moment);
    evaluation.plan = MacHoldsSchedule::plan(evaluation.due, current->keepCommunication, moment.today);
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
