#include "KoviMacHolds/MacHoldsDayClock.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace kovi::holds {

struct MacHoldsDayClock::DayMemory {
  std::optional<bool> exists;
  std::optional<std::optional<std::string>> before;
  std::vector<std::pair<std::int64_t, std::optional<Date>>> wallTimes;  // a handful per day
};

struct MacHoldsDayClock::ZoneMemory {
  std::string zone;
  std::map<std::string, DayMemory, std::less<>> days;
};

namespace {

// A schedule touches today, yesterday and tomorrow, each at a handful of
// minutes; a timeline or a test a few more. Past these sizes the memory
// starts again rather than grow.
constexpr std::size_t kRememberedDays = 32;
constexpr std::size_t kRememberedWallTimes = 64;

}  // namespace

MacHoldsDayClock::ZoneMemory& MacHoldsDayClock::zoneMemory() {
  thread_local ZoneMemory memory;
  return memory;
}

MacHoldsDayClock::MacHoldsDayClock(const Calendar& calendar) : calendar_(calendar) {
  ZoneMemory& memory = zoneMemory();
  std::string zone = calendar.zoneID();
  if (memory.zone != zone) {
    memory.days.clear();
    memory.zone = std::move(zone);
  }
}

MacHoldsDayClock::DayMemory& MacHoldsDayClock::remembered(std::string_view day) const {
  auto& days = zoneMemory().days;
  if (const auto found = days.find(day); found != days.end()) return found->second;
  if (days.size() >= kRememberedDays) days.clear();
  return days.emplace(std::string(day), DayMemory{}).first->second;
}

bool MacHoldsDayClock::isDay(std::string_view day) const {
  DayMemory& memory = remembered(day);
  if (!memory.exists) memory.exists = calendar_.parseDay(day).has_value();
  return *memory.exists;
}

std::optional<Date> MacHoldsDayClock::dateAt(std::string_view day, std::int64_t minute) const {
  if (minute < 0 || minute > std::numeric_limits<int>::max()) return std::nullopt;
  DayMemory& memory = remembered(day);
  const auto found = std::ranges::find(memory.wallTimes, minute, &std::pair<std::int64_t, std::optional<Date>>::first);
  if (found != memory.wallTimes.end()) return found->second;
  const auto date = calendar_.dateAt(day, static_cast<int>(minute));
  if (memory.wallTimes.size() >= kRememberedWallTimes) memory.wallTimes.clear();
  memory.wallTimes.emplace_back(minute, date);
  return date;
}

std::optional<std::string> MacHoldsDayClock::dayBefore(std::string_view day) const {
  DayMemory& memory = remembered(day);
  if (!memory.before) memory.before = calendar_.shiftDay(-1, day);
  return *memory.before;
}

}  // namespace kovi::holds
