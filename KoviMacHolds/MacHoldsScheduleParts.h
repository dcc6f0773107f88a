#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviMacHolds/MacHoldsDayClock.h"
#include "KoviMacHolds/MacHoldsSchedule.h"

// The building blocks of the schedule, shared by the evaluation at one instant
// (which works out the windows once and derives the rest from them) and the
// timeline of a whole day, so both see the same boundaries.
namespace kovi::holds::MacHoldsSchedule {

// An instant under evaluation: the instant, its local day and the clock.
struct Moment {
  Date now;
  std::string today;
  const MacHoldsDayClock& clock;
};
Moment momentAt(Date now, const MacHoldsDayClock& clock);

std::vector<Window> windowsAt(const MacHoldsSnapshot& snapshot, const Moment& moment);
// The due hold, given the windows that contain the moment.
MacHoldsDue dueAt(const MacHoldsSnapshot& snapshot, const std::vector<Window>& windows, const Moment& moment);
bool isActiveAt(const MacHoldsSnapshot* snapshot, const Moment& moment);

// Where `day` stands against the exam week. Each of the week's day strings
// counts on its own: one that names no real day of the calendar fails every
// comparison it takes part in (day strings compare as text, so a malformed
// one such as "2026-11-3x" could otherwise match), while the other still
// counts. An unparsable `startDay` thus keeps the week's range from matching
// but leaves "today <= endDay" true until the end day has passed.
bool onOrBeforeExamEnd(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, const MacHoldsDayClock& clock);
bool insideExamWeek(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, const MacHoldsDayClock& clock);

// The study block starting `startMinute` into `day`.
std::optional<Window> studyBlock(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, int startMinute,
                                 const MacHoldsDayClock& clock);

// The night that begins `startMinute` into `day` and ends `endMinute` into
// the same day, or into the next when it is not later than the start.
std::optional<Window> nightOf(std::string_view day, int startMinute, int endMinute, const MacHoldsDayClock& clock);

// The days whose nights can contain an instant of `today`: today, then
// yesterday when the calendar can compute it.
std::vector<std::string> nightDays(std::string_view today, const MacHoldsDayClock& clock);

// The day's Social allowance in milliseconds; 0 without an exam week.
std::int64_t socialBudgetMS(const MacHoldsSnapshot& snapshot);

}  // namespace kovi::holds::MacHoldsSchedule
