#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/working/WorkingMemberWork.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// A member's counted time in one kovi day or scheduled window, and whether it
// met that day's or window's target.
struct WorkingPeriodProgress {
  std::string id;
  std::int64_t countedMilliseconds;
  bool met;
  bool operator==(const WorkingPeriodProgress&) const = default;
};

// Where one member stands against the goal of a rule set.
struct WorkingMemberProgress {
  // All counted work inside the kovi, after dropping sessions under the
  // minimum and, with `outsideWindow` = exclude, work outside every window.
  std::int64_t countedMilliseconds = 0;
  // The goal kind's progress measure and the value it must reach.
  std::int64_t progressMilliseconds = 0;
  std::int64_t targetMilliseconds = 0;
  bool successful = false;
  // Days that met the daily target, and the longest run of them (daily kinds).
  std::int64_t successfulDays = 0;
  std::int64_t bestStreak = 0;
  // When the race target was reached (races with a target).
  std::optional<std::int64_t> reachedAt;
  std::vector<WorkingPeriodProgress> days;     // daily goal kinds
  std::vector<WorkingPeriodProgress> windows;  // scheduled and sprint goals
  bool operator==(const WorkingMemberProgress&) const = default;
};

// The progress of `member` under valid `rules`. The member's segments must not
// overlap one another (the judgement checks this first).
WorkingMemberProgress measureWorkingProgress(const WorkingRules& rules, const WorkingMemberWork& member);

}  // namespace kovi
