#include "KoviKit/working/WorkingScheduledItem.h"

namespace kovi {

std::vector<WorkingScheduledItem> workingScheduledItems(const WorkingRules& rules) {
  std::vector<WorkingScheduledItem> items;
  items.reserve(rules.calendar.windows.size());
  for (const WorkingRules::ScheduleWindow& window : rules.calendar.windows) {
    items.push_back({window.id, window.start, window.end, window.targetSeconds, rules.calendar.timezone});
  }
  return items;
}

std::optional<WorkingScheduledItem> nextWorkingScheduledItem(std::span<const WorkingScheduledItem> items,
                                                             UnixMillis now) {
  const WorkingScheduledItem* best = nullptr;
  for (const WorkingScheduledItem& item : items) {
    if (item.endsAt <= now) continue;
    // A running window beats any later one; among the rest the earliest start wins.
    if (best == nullptr || item.startsAt < best->startsAt) best = &item;
  }
  if (best == nullptr) return std::nullopt;
  return *best;
}

}  // namespace kovi
