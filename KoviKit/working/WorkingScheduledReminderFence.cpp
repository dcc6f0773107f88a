#include "KoviKit/working/WorkingScheduledReminderFence.h"

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {

std::string WorkingScheduledReminderFence::key(Kind kind, std::string_view windowID) {
  std::string text(enumName(kind));
  text += ':';
  text += windowID;
  return text;
}

UnixMillis WorkingScheduledReminderFence::dueAt(Kind kind, const WorkingScheduledItem& item) {
  if (kind == Kind::ready) return item.startsAt;
  return checkedSub<UnixMillis>(item.startsAt, kAdvanceLeadMS);
}

WorkingScheduledReminderFence::Ticket WorkingScheduledReminderFence::schedule(Kind kind, std::string_view windowID) {
  std::string operationKey = key(kind, windowID);
  Operation& operation = operations[operationKey];
  operation = Operation{kind, checkedAdd<std::int64_t>(operation.generation, 1), false};
  return Ticket{ownerEpoch, std::move(operationKey), operation.generation};
}

std::expected<void, WorkingScheduledReminderFence::Refusal> WorkingScheduledReminderFence::deliver(
    const Ticket& ticket) {
  if (ticket.ownerEpoch != ownerEpoch) return std::unexpected(Refusal::staleOwner);
  const auto found = operations.find(ticket.key);
  if (found == operations.end() || found->second.generation != ticket.generation) {
    return std::unexpected(Refusal::staleGeneration);
  }
  if (found->second.delivered) return std::unexpected(Refusal::alreadyDelivered);
  found->second.delivered = true;
  return {};
}

void WorkingScheduledReminderFence::changeOwner(std::int64_t newOwnerEpoch) {
  ownerEpoch = newOwnerEpoch;
  operations.clear();
}

}  // namespace kovi
