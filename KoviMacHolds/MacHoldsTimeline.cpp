#include "KoviMacHolds/MacHoldsTimeline.h"

#include <algorithm>
#include <cmath>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviMacHolds/MacHoldsSchedule.h"
#include "KoviMacHolds/MacHoldsScheduleParts.h"

namespace kovi::holds {
namespace {

using namespace MacHoldsSchedule;

// The first whole millisecond at or after `date`: segments are whole
// milliseconds, and a boundary inside one belongs to the next.
UnixMillis firstMillisFrom(Date date) {
  return Date::fromUnixMillis(std::ceil(date.unixMillisExact())).unixMillis();
}

// Every instant at which the due hold can change during `day`: the edges of
// the day's study blocks, of tonight's and last night's nights, and the
// millisecond the day's open Social span runs out of budget.
std::vector<UnixMillis> changeCandidates(const MacHoldsSnapshot& snapshot, std::string_view day,
                                         const MacHoldsDayClock& clock) {
  std::vector<Window> boundaries;
  auto keep = [&](const std::optional<Window>& window) {
    if (window) boundaries.push_back(*window);
  };
  const std::vector<std::string> nights = nightDays(day, clock);
  if (const auto& week = snapshot.examWeek) {
    keep(studyBlock(*week, day, week->firstMinute, clock));
    keep(studyBlock(*week, day, week->secondMinute, clock));
    if (week->sleepStart && week->sleepEnd) {
      for (const std::string& night : nights) keep(nightOf(night, *week->sleepStart, *week->sleepEnd, clock));
    }
  }
  if (const auto& sleep = snapshot.sleep) {
    for (const std::string& night : nights) keep(nightOf(night, sleep->startMinute, sleep->endMinute, clock));
  }

  std::vector<UnixMillis> candidates;
  for (const Window& window : boundaries) {
    candidates.push_back(firstMillisFrom(window.start));
    candidates.push_back(firstMillisFrom(window.end));
  }
  // With `used` spent before the span opened at `since`, the span has budget
  // left exactly while now < since + budget - used.
  if (const auto& allowance = snapshot.allowance; allowance && allowance->since && allowance->day == day) {
    candidates.push_back(
        checkedSub(checkedAdd(*allowance->since, socialBudgetMS(snapshot)), allowance->usedMS));
  }
  return candidates;
}

}  // namespace

std::optional<std::vector<MacHoldsSegment>> macHoldsTimeline(const MacHoldsSnapshot& snapshot, std::string_view day,
                                                             const Calendar& calendar) {
  const MacHoldsDayClock clock(calendar);
  const auto dayStart = clock.dateAt(day, 0);
  const auto dayEnd = clock.dateAt(day, 1440);
  if (!dayStart || !dayEnd) return std::nullopt;
  const UnixMillis from = firstMillisFrom(*dayStart);
  const UnixMillis to = firstMillisFrom(*dayEnd);

  std::vector<UnixMillis> cuts{from};
  for (const UnixMillis candidate : changeCandidates(snapshot, day, clock)) {
    if (from < candidate && candidate < to) cuts.push_back(candidate);
  }
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  cuts.push_back(to);

  // Between two neighbouring cuts nothing the due hold depends on changes, so
  // one evaluation at the start of each piece stands for all of it.
  std::vector<MacHoldsSegment> segments;
  for (std::size_t index = 0; index + 1 < cuts.size(); ++index) {
    const Moment moment = momentAt(Date::fromUnixMillis(static_cast<double>(cuts[index])), clock);
    const auto kind = dueAt(snapshot, windowsAt(snapshot, moment), moment).kind;
    if (!segments.empty() && segments.back().kind == kind) {
      segments.back().to = cuts[index + 1];
    } else {
      segments.push_back({cuts[index], cuts[index + 1], kind});
    }
  }
  return segments;
}

}  // namespace kovi::holds
