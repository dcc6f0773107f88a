#include "KoviMacHolds/MacHoldsSchedule.h"

#include <algorithm>
#include <array>
#include <set>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/purrl/PurrlFocusMode.h"
#include "KoviMacHolds/MacHoldsScheduleParts.h"

namespace kovi::holds::MacHoldsSchedule {

Moment momentAt(Date now, const MacHoldsDayClock& clock) { return Moment{now, clock.dayString(now), clock}; }

std::optional<Window> studyBlock(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, int startMinute,
                                 const MacHoldsDayClock& clock) {
  const auto start = clock.dateAt(day, startMinute);
  const auto end = clock.dateAt(day, std::int64_t{startMinute} + week.blockMinutes);
  if (!start || !end) return std::nullopt;
  return Window{Window::Kind::study, *start, *end};
}

std::optional<Window> nightOf(std::string_view day, int startMinute, int endMinute, const MacHoldsDayClock& clock) {
  // An end at or before the start is on the next day; equal start and end is
  // a full 24 hours, not an empty night.
  const std::int64_t end = startMinute < endMinute ? endMinute : std::int64_t{endMinute} + 1440;
  const auto startDate = clock.dateAt(day, startMinute);
  const auto endDate = clock.dateAt(day, end);
  if (!startDate || !endDate) return std::nullopt;
  return Window{Window::Kind::sleep, *startDate, *endDate};
}

bool onOrBeforeExamEnd(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, const MacHoldsDayClock& clock) {
  return clock.isDay(week.endDay) && day <= week.endDay;
}

bool insideExamWeek(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, const MacHoldsDayClock& clock) {
  return clock.isDay(week.startDay) && week.startDay <= day && onOrBeforeExamEnd(week, day, clock);
}

std::int64_t socialBudgetMS(const MacHoldsSnapshot& snapshot) {
  if (!snapshot.examWeek) return 0;
  return checkedMul<std::int64_t>(snapshot.examWeek->socialMinutes, 60'000);
}

std::vector<std::string> nightDays(std::string_view today, const MacHoldsDayClock& clock) {
  std::vector<std::string> days{std::string(today)};
  if (auto yesterday = clock.dayBefore(today)) days.push_back(std::move(*yesterday));
  return days;
}

namespace {

bool contains(const Window& window, Date now) { return window.start <= now && now < window.end; }

// The night that contains the moment, trying tonight before last night; the
// first match ends the search, with the day it began on.
std::optional<std::pair<std::string, Window>> nightContaining(int startMinute, int endMinute, const Moment& moment) {
  for (std::string& day : nightDays(moment.today, moment.clock)) {
    const auto night = nightOf(day, startMinute, endMinute, moment.clock);
    if (night && contains(*night, moment.now)) return std::pair{std::move(day), *night};
  }
  return std::nullopt;
}

// Milliseconds of an open span up to now; a span that claims to start in the
// future has used nothing yet.
std::int64_t elapsedSince(std::int64_t since, Date now) {
  return std::max<std::int64_t>(checkedSub(now.unixMillis(), since), 0);
}

AllowanceToday allowanceOn(const MacHoldsSnapshot& snapshot, const Moment& moment) {
  AllowanceToday result{moment.today, 0, std::nullopt};
  // A record of another day says nothing about today.
  if (!snapshot.allowance || snapshot.allowance->day != result.day) return result;
  result.usedMS = snapshot.allowance->usedMS;
  result.since = snapshot.allowance->since;
  if (result.since) {
    const std::int64_t budget = socialBudgetMS(snapshot);
    const std::int64_t total = checkedAdd(result.usedMS, elapsedSince(*result.since, moment.now));
    if (checkedSub(budget, total) < 1) {
      result.since.reset();
      result.usedMS = std::min(total, budget);
    }
  }
  return result;
}

}  // namespace

std::vector<Window> windowsAt(const MacHoldsSnapshot& snapshot, const Moment& moment) {
  std::vector<Window> found;
  if (const auto& week = snapshot.examWeek) {
    // Study blocks belong to the day they start on and never carry over midnight.
    if (insideExamWeek(*week, moment.today, moment.clock)) {
      for (const int startMinute : {week->firstMinute, week->secondMinute}) {
        const auto block = studyBlock(*week, moment.today, startMinute, moment.clock);
        if (block && contains(*block, moment.now)) found.push_back(*block);
      }
    }
    // An exam-week night counts only when it began inside the exam week. When
    // the night that contains now began outside it, last night is deliberately
    // not tried in its place.
    if (week->sleepStart && week->sleepEnd) {
      const auto night = nightContaining(*week->sleepStart, *week->sleepEnd, moment);
      if (night && insideExamWeek(*week, night->first, moment.clock)) found.push_back(night->second);
    }
  }
  if (const auto& sleep = snapshot.sleep) {
    if (auto night = nightContaining(sleep->startMinute, sleep->endMinute, moment)) found.push_back(night->second);
  }
  return found;
}

MacHoldsDue dueAt(const MacHoldsSnapshot& snapshot, const std::vector<Window>& windows, const Moment& moment) {
  if (snapshot.stopped) return MacHoldsDue::none();

  if (!windows.empty()) {
    // The window that began first decides; on equal starts the first found.
    const Window* earliest = &windows.front();
    for (const Window& window : windows) {
      if (window.start < earliest->start) earliest = &window;
    }
    return earliest->kind == Window::Kind::study ? MacHoldsDue::study(earliest->end)
                                                 : MacHoldsDue::sleep(earliest->end);
  }

  const auto& week = snapshot.examWeek;
  if (!week || !insideExamWeek(*week, moment.today, moment.clock)) return MacHoldsDue::none();

  // Outside windows, an exam-week day is under the Social hold until midnight,
  // except while the main app has a Social span open with budget left.
  const auto endOfDay = moment.clock.dateAt(moment.today, 1440);
  if (!endOfDay) return MacHoldsDue::none();
  const AllowanceToday allowance = allowanceOn(snapshot, moment);
  if (allowance.since) {
    const std::int64_t used = checkedAdd(allowance.usedMS, elapsedSince(*allowance.since, moment.now));
    const std::int64_t remaining = checkedSub(socialBudgetMS(snapshot), used);
    if (remaining >= 1) {
      return MacHoldsDue::socialOpen(std::min(*endOfDay, moment.now.addingMillis(static_cast<double>(remaining))));
    }
  }
  return MacHoldsDue::social(*endOfDay);
}

bool isActiveAt(const MacHoldsSnapshot* snapshot, const Moment& moment) {
  if (snapshot == nullptr || snapshot->stopped) return false;
  // An everyday sleep hold never ends by itself.
  if (snapshot->sleep) return true;
  const auto& week = snapshot->examWeek;
  if (!week) return false;
  if (onOrBeforeExamEnd(*week, moment.today, moment.clock)) return true;
  // After the exam week, a night that began on its last day is seen through.
  return dueAt(*snapshot, windowsAt(*snapshot, moment), moment).kind != MacHoldsDue::Kind::none;
}

std::vector<Window> windows(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  const MacHoldsDayClock clock(calendar);
  return windowsAt(snapshot, momentAt(now, clock));
}

MacHoldsDue due(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  const MacHoldsDayClock clock(calendar);
  const Moment moment = momentAt(now, clock);
  return dueAt(snapshot, windowsAt(snapshot, moment), moment);
}

AllowanceToday allowanceToday(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  const MacHoldsDayClock clock(calendar);
  return allowanceOn(snapshot, momentAt(now, clock));
}

bool isActive(const MacHoldsSnapshot* snapshot, Date now, const Calendar& calendar) {
  const MacHoldsDayClock clock(calendar);
  return isActiveAt(snapshot, momentAt(now, clock));
}

namespace {

// The applications of a row's plan, with or without the communication set.
// Built once for every row and copied into each plan: the agent makes a plan
// every few seconds.
const std::set<std::string>& planBundleIDs(PurrlFocusModeID mode, bool withCommunication) {
  static const auto sets = [] {
    std::vector<std::array<std::set<std::string>, 2>> built;
    for (const PurrlFocusModeSpec& row : purrlFocusModeTable()) {
      std::set<std::string> rowOnly(row.macBundleIDs.begin(), row.macBundleIDs.end());
      std::set<std::string> withSet = rowOnly;
      withSet.insert(kMacHoldsCommunicationBundleIDs.begin(), kMacHoldsCommunicationBundleIDs.end());
      built.push_back({std::move(rowOnly), std::move(withSet)});
    }
    return built;
  }();
  return sets[static_cast<std::size_t>(mode)][withCommunication ? 1 : 0];
}

struct PresetHold {
  PurrlFocusModeID mode;
  std::string runIDPrefix;
};

MacFocus2EnforcementPlan presetPlan(const PresetHold& hold, UnixMillis until, bool keepCommunication) {
  const PurrlFocusModeSpec& row = purrlFocusModeSpec(hold.mode);
  MacFocus2EnforcementPlan plan;
  plan.runID = hold.runIDPrefix + std::to_string(until);
  plan.mode = hold.mode;
  plan.allowlist = row.macApps == PurrlFocusAppPolicy::allowList;
  plan.bundleIDs = planBundleIDs(hold.mode, plan.allowlist && keepCommunication);
  plan.domains = row.blockedDomains;
  plan.until = until;
  plan.examWeek = false;
  return plan;
}

// The exam-week Social hold reuses the gym row's Mac block list and domains.
MacFocus2EnforcementPlan socialPlan(UnixMillis until, std::string_view today) {
  const PurrlFocusModeSpec& row = purrlFocusModeSpec(PurrlFocusModeID::gym);
  MacFocus2EnforcementPlan plan;
  plan.runID = "exam-week-social:" + std::string(today);
  plan.mode = PurrlFocusModeID::gym;
  plan.allowlist = false;
  plan.bundleIDs = planBundleIDs(PurrlFocusModeID::gym, false);
  plan.domains = row.blockedDomains;
  plan.until = until;
  plan.examWeek = true;
  return plan;
}

}  // namespace

std::optional<MacFocus2EnforcementPlan> plan(const MacHoldsDue& due, bool keepCommunication, std::string_view today) {
  if (!due.until) return std::nullopt;
  const UnixMillis until = due.until->unixMillis();
  switch (due.kind) {
    case MacHoldsDue::Kind::study:
      return presetPlan({PurrlFocusModeID::study, "holds-study:"}, until, keepCommunication);
    case MacHoldsDue::Kind::sleep:
      return presetPlan({PurrlFocusModeID::sleep, "holds-sleep:"}, until, keepCommunication);
    case MacHoldsDue::Kind::social: return socialPlan(until, today);
    case MacHoldsDue::Kind::socialOpen:
    case MacHoldsDue::Kind::none: break;
  }
  return std::nullopt;
}

}  // namespace kovi::holds::MacHoldsSchedule
