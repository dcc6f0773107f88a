#include "KoviKit/working/WorkingScheduledStartFence.h"

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {

bool WorkingScheduledStartFence::arm(const Plan& newPlan, std::int64_t newOwnerEpoch,
                                     std::int64_t newRefreshEpoch) {
  if (newPlan.lateDeadline < newPlan.startsAt) return false;
  armGeneration = checkedAdd<std::int64_t>(armGeneration, 1);
  state = State::armed;
  plan = newPlan;
  ownerEpoch = newOwnerEpoch;
  refreshEpoch = newRefreshEpoch;
  firedAt.reset();
  receipt.reset();
  return true;
}

void WorkingScheduledStartFence::cancel() {
  if (state == State::armed) state = State::cancelled;
}

std::expected<WorkingScheduledStartFence::Published, WorkingScheduledStartFence::Failure>
WorkingScheduledStartFence::fire(UnixMillis now, std::int64_t callerOwnerEpoch, std::int64_t callerRefreshEpoch) {
  if (state == State::fired) return std::unexpected(Failure::alreadyFired);
  // An armed fence without a plan has nothing to start (a damaged record).
  if (state != State::armed || !plan) return std::unexpected(Failure::notArmed);
  if (callerOwnerEpoch != ownerEpoch) return std::unexpected(Failure::ownerMismatch);
  if (callerRefreshEpoch != refreshEpoch) return std::unexpected(Failure::refreshMismatch);
  if (now < plan->startsAt) return std::unexpected(Failure::early);
  if (now > plan->lateDeadline) return std::unexpected(Failure::expired);
  state = State::fired;
  firedAt = now;
  return Published{now};
}

}  // namespace kovi
