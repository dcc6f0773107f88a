#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacFocus2EnforcementPlan.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

// Pure functions over (snapshot, now, calendar): which windows contain an
// instant, which hold is due, how much of the Social allowance is left, and
// what the guard enforces. `calendar` is the user's calendar and time zone,
// taken fresh for each evaluation. A calendar step that fails (an unparsable
// day string, a wall time ICU cannot set) makes the affected window or result
// absent; overflow in the millisecond arithmetic traps.
namespace kovi::holds::MacHoldsSchedule {

// A study block or a night: start inclusive, end exclusive.
struct Window {
  enum class Kind { study, sleep };
  Kind kind = Kind::study;
  Date start;
  Date end;

  bool operator==(const Window&) const = default;
};

// Every window that contains `now`, in the order study blocks, exam-week
// night, everyday night.
std::vector<Window> windows(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar);

// The hold due at `now`.
MacHoldsDue due(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar);

// Today's Social allowance: the snapshot's record when it belongs to today,
// with an open span closed (and `usedMS` capped at the budget) once the budget
// is spent.
struct AllowanceToday {
  std::string day;
  std::int64_t usedMS = 0;
  std::optional<std::int64_t> since;

  bool operator==(const AllowanceToday&) const = default;
};
AllowanceToday allowanceToday(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar);

// The enforcement plan of a due hold, or nullopt when nothing is held
// (socialOpen, none). `today` is the day string of the evaluation.
std::optional<MacFocus2EnforcementPlan> plan(const MacHoldsDue& due, bool keepCommunication, std::string_view today);

// Whether the agent has anything left to do. A missing snapshot is never active.
bool isActive(const MacHoldsSnapshot* snapshot, Date now, const Calendar& calendar);

}  // namespace kovi::holds::MacHoldsSchedule

namespace kovi {

template <>
struct EnumNames<holds::MacHoldsSchedule::Window::Kind> {
  using Kind = holds::MacHoldsSchedule::Window::Kind;
  static constexpr std::array table{
      std::pair{Kind::study, std::string_view("study")},
      std::pair{Kind::sleep, std::string_view("sleep")},
  };
};

}  // namespace kovi
