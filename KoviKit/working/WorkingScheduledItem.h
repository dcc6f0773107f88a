#pragma once

#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// One scheduled window of a working kovi as the devices plan around it: the
// schedule window's id, its instants, its target and the zone its times were
// set in.
struct WorkingScheduledItem {
  std::string id;
  UnixMillis startsAt = 0;
  UnixMillis endsAt = 0;
  std::int64_t targetSeconds = 0;
  std::string timezone;
  bool operator==(const WorkingScheduledItem&) const = default;
};

template <>
struct JsonRecordFields<WorkingScheduledItem> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("id", &WorkingScheduledItem::id), field("startsAt", &WorkingScheduledItem::startsAt),
      field("endsAt", &WorkingScheduledItem::endsAt), field("targetSeconds", &WorkingScheduledItem::targetSeconds),
      field("timezone", &WorkingScheduledItem::timezone)};
};

// The scheduled windows of `rules` in the order the rules list them.
std::vector<WorkingScheduledItem> workingScheduledItems(const WorkingRules& rules);

// The window that is running at `now` or, failing that, the next one to
// start; none when every window has ended. A window is running from its start
// up to, not including, its end.
std::optional<WorkingScheduledItem> nextWorkingScheduledItem(std::span<const WorkingScheduledItem> items,
                                                             UnixMillis now);

}  // namespace kovi
