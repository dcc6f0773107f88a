#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsSchedule.h"

// The building blocks of the windows, shared by the evaluation at one instant
// and the timeline of a whole day so both see the same boundaries.
namespace kovi::holds::MacHoldsSchedule {

// `minute` minutes into `day`; nullopt when it is negative, beyond int or
// ICU cannot compute it.
std::optional<Date> dateAtMinute(const Calendar& calendar, std::string_view day, std::int64_t minute);

// The study block starting `startMinute` into `day`.
std::optional<Window> studyBlock(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, int startMinute,
                                 const Calendar& calendar);

// The night that begins `startMinute` into `day` and ends `endMinute` into
// the same day, or into the next when it is not later than the start.
std::optional<Window> nightOf(std::string_view day, int startMinute, int endMinute, const Calendar& calendar);

// The snapshot's exam week when both of its days name real days of the
// calendar. Day strings compare as text, so a malformed one ("2026-11-3x")
// could otherwise match; an exam week whose days do not parse never matches.
const MacHoldsSnapshot::ExamWeek* examWeekOf(const MacHoldsSnapshot& snapshot, const Calendar& calendar);

// The day's Social allowance in milliseconds; 0 without an exam week.
std::int64_t socialBudgetMS(const MacHoldsSnapshot& snapshot);

// The days whose nights can contain an instant of `today`: today, then
// yesterday when the calendar can compute it.
std::vector<std::string> nightDays(std::string_view today, const Calendar& calendar);

}  // namespace kovi::holds::MacHoldsSchedule
