#include "KoviKit/evidence/WalkingDayWindowPlanner.h"

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

constexpr UnixMillis kDayMillis = 24 * 60 * 60 * 1000;
// Starts outside the years 1 to 9999 come only from corrupt input; refusing
// them keeps the day arithmetic far from overflow.
constexpr UnixMillis kEarliestStart = -62135596800000;
constexpr UnixMillis kLatestStart = 253402300799999;

std::vector<HealthEvidenceDayWindow> anchoredWindows(int days, UnixMillis start) {
  std::vector<HealthEvidenceDayWindow> windows;
  windows.reserve(static_cast<std::size_t>(days));
  for (int day = 0; day < days; ++day) {
    const UnixMillis dayStart = checkedAdd(start, checkedMul(static_cast<UnixMillis>(day), kDayMillis));
    windows.push_back({day, dayStart, checkedAdd(dayStart, kDayMillis)});
  }
  return windows;
}

// The local day string of day 0.
std::expected<std::string, std::string> firstCalendarDay(const Calendar& calendar, WalkingKoviRules::FirstDay firstDay,
                                                         Date start) {
  const std::string startDay = calendar.dayString(start);
  if (firstDay == WalkingKoviRules::FirstDay::today || calendar.startOfDay(start) == start) return startDay;
  auto nextDay = calendar.shiftDay(1, startDay);
  if (!nextDay) return std::unexpected("the calendar cannot step past " + startDay);
  return std::move(*nextDay);
}

std::expected<std::vector<HealthEvidenceDayWindow>, std::string> calendarWindows(const WalkingKoviRules& rules,
                                                                                 UnixMillis start) {
  std::expected<Calendar, std::string> calendar = Calendar::current();
  if (rules.timezone) calendar = Calendar::inZone(*rules.timezone);
  if (!calendar) return std::unexpected(calendar.error());

  auto firstDay = firstCalendarDay(*calendar, rules.effectiveFirstDay(), Date::fromUnixMillis(static_cast<double>(start)));
  if (!firstDay) return std::unexpected(firstDay.error());

  // Day n runs from the midnight that begins it to the one that begins day n + 1.
  std::vector<UnixMillis> midnights;
  midnights.reserve(static_cast<std::size_t>(rules.durationDays) + 1);
  for (int day = 0; day <= rules.durationDays; ++day) {
    const auto dayString = calendar->shiftDay(day, *firstDay);
    const auto midnight = dayString ? calendar->parseDay(*dayString) : std::nullopt;
    if (!midnight) return std::unexpected("the calendar cannot find the start of day " + std::to_string(day));
    midnights.push_back(midnight->unixMillis());
  }
  std::vector<HealthEvidenceDayWindow> windows;
  windows.reserve(static_cast<std::size_t>(rules.durationDays));
  for (int day = 0; day < rules.durationDays; ++day) {
    windows.push_back({day, midnights[static_cast<std::size_t>(day)], midnights[static_cast<std::size_t>(day) + 1]});
  }
  return windows;
}

}  // namespace

std::expected<std::vector<HealthEvidenceDayWindow>, std::string> WalkingDayWindowPlanner::plan(
    const WalkingKoviRules& rules, UnixMillis start) {
  if (rules.durationDays < 1) return std::unexpected("durationDays must be at least 1");
  if (rules.durationDays > kMaximumDays) {
    return std::unexpected("durationDays must be at most " + std::to_string(kMaximumDays));
  }
  if (start < kEarliestStart || start > kLatestStart) return std::unexpected("the start lies outside the years 1 to 9999");
  if (rules.effectiveDayBoundary() == WalkingDayBoundary::anchored) return anchoredWindows(rules.durationDays, start);
  return calendarWindows(rules, start);
}

}  // namespace kovi
