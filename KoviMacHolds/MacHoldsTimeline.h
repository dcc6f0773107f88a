#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// A stretch of a day during which the same kind of hold is due: [from, to).
struct MacHoldsSegment {
  UnixMillis from = 0;
  UnixMillis to = 0;
  MacHoldsDue::Kind kind = MacHoldsDue::Kind::none;

  bool operator==(const MacHoldsSegment&) const = default;
};

// The due hold over `day`, from its local midnight to the next, as the fewest
// segments that cover it without gaps or overlaps; neighbouring segments
// differ in kind. Every change is found exactly: the due hold can only change
// at a window boundary, at midnight or when the Social allowance runs out, so
// those instants split the day and each piece is evaluated once. nullopt when
// `day` names no day of the calendar.
std::optional<std::vector<MacHoldsSegment>> macHoldsTimeline(const MacHoldsSnapshot& snapshot, std::string_view day,
                                                             const Calendar& calendar);

}  // namespace kovi::holds
