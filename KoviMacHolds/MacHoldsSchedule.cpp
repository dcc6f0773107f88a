#include "KoviMacHolds/MacHoldsSchedule.h"

#include <algorithm>
#include <limits>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/purrl/PurrlFocusMode.h"
#include "KoviMacHolds/MacHoldsScheduleParts.h"

namespace kovi::holds::MacHoldsSchedule {

std::optional<Date> dateAtMinute(const Calendar& calendar, std::string_view day, std::int64_t minute) {
  // A sum of two snapshot minutes can leave int's range; such a time names no
  // day ICU can compute, so the window is absent.
  if (minute < 0 || minute > std::numeric_limits<int>::max()) return std::nullopt;
  return calendar.dateAt(day, static_cast<int>(minute));
}

std::optional<Window> studyBlock(const MacHoldsSnapshot::ExamWeek& week, std::string_view day, int startMinute,
                                 const Calendar& calendar) {
  const auto start = dateAtMinute(calendar, day, startMinute);
  const auto end = dateAtMinute(calendar, day, std::int64_t{startMinute} + week.blockMinutes);
  if (!start || !end) return std::nullopt;
  return Window{Window::Kind::study, *start, *end};
}

std::optional<Window> nightOf(std::string_view day, int startMinute, int endMinute, const Calendar& calendar) {
  // An end at or before the start is on the next day; equal start and end is
  // a full 24 hours, not an empty night.
  const std::int64_t end = startMinute < endMinute ? endMinute : std::int64_t{endMinute} + 1440;
  const auto startDate = dateAtMinute(calendar, day, startMinute);
  const auto endDate = dateAtMinute(calendar, day, end);
  if (!startDate || !endDate) return std::nullopt;
  return Window{Window::Kind::sleep, *startDate, *endDate};
}

const MacHoldsSnapshot::ExamWeek* examWeekOf(const MacHoldsSnapshot& snapshot, const Calendar& calendar) {
  const auto& week = snapshot.examWeek;
  if (!week || !calendar.parseDay(week->startDay) || !calendar.parseDay(week->endDay)) return nullptr;
  return &*week;
}

std::int64_t socialBudgetMS(const MacHoldsSnapshot& snapshot) {
  if (!snapshot.examWeek) return 0;
  return checkedMul<std::int64_t>(snapshot.examWeek->socialMinutes, 60'000);
}

std::vector<std::string> nightDays(std::string_view today, const Calendar& calendar) {
  std::vector<std::string> days{std::string(today)};
  if (auto yesterday = calendar.shiftDay(-1, today)) days.push_back(std::move(*yesterday));
  return days;
}

namespace {

bool contains(const Window& window, Date now) { return window.start <= now && now < window.end; }

bool insideExamWeek(const MacHoldsSnapshot::ExamWeek& week, std::string_view day) {
  return week.startDay <= day && day <= week.endDay;
}

// The night that contains `now`, trying tonight before last night; the first
// match ends the search, with the day it began on.
std::optional<std::pair<std::string, Window>> nightContaining(int startMinute, int endMinute, std::string_view today,
                                                              Date now, const Calendar& calendar) {
  for (std::string& day : nightDays(today, calendar)) {
    const auto night = nightOf(day, startMinute, endMinute, calendar);
    if (night && contains(*night, now)) return std::pair{std::move(day), *night};
  }
  return std::nullopt;
}

// Milliseconds of an open span up to now; a span that claims to start in the
// future has used nothing yet.
std::int64_t elapsedSince(std::int64_t since, Date now) {
  return std::max<std::int64_t>(checkedSub(now.unixMillis(), since), 0);
}

}  // namespace

std::vector<Window> windows(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  std::vector<Window> found;
  const std::string today = calendar.dayString(now);
  if (const auto* week = examWeekOf(snapshot, calendar)) {
    // Study blocks belong to the day they start on and never carry over midnight.
    if (insideExamWeek(*week, today)) {
      for (const int startMinute : {week->firstMinute, week->secondMinute}) {
        const auto block = studyBlock(*week, today, startMinute, calendar);
        if (block && contains(*block, now)) found.push_back(*block);
      }
    }
    // An exam-week night counts only when it began inside the exam week. When
    // the night that contains now began outside it, last night is deliberately
    // not tried in its place.
    if (week->sleepStart && week->sleepEnd) {
      const auto night = nightContaining(*week->sleepStart, *week->sleepEnd, today, now, calendar);
      if (night && insideExamWeek(*week, night->first)) found.push_back(night->second);
    }
  }
  if (const auto& sleep = snapshot.sleep) {
    if (auto night = nightContaining(sleep->startMinute, sleep->endMinute, today, now, calendar)) {
      found.push_back(night->second);
    }
  }
  return found;
}

AllowanceToday allowanceToday(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  AllowanceToday result{calendar.dayString(now), 0, std::nullopt};
  // A record of another day says nothing about today.
  if (!snapshot.allowance || snapshot.allowance->day != result.day) return result;
  result.usedMS = snapshot.allowance->usedMS;
  result.since = snapshot.allowance->since;
  if (result.since) {
    const std::int64_t budget = socialBudgetMS(snapshot);
    const std::int64_t total = checkedAdd(result.usedMS, elapsedSince(*result.since, now));
    if (checkedSub(budget, total) < 1) {
      result.since.reset();
      result.usedMS = std::min(total, budget);
    }
  }
  return result;
}

MacHoldsDue due(const MacHoldsSnapshot& snapshot, Date now, const Calendar& calendar) {
  if (snapshot.stopped) return MacHoldsDue::none();

  const std::vector<Window> found = windows(snapshot, now, calendar);
  if (!found.empty()) {
    // The window that began first decides; on equal starts the first found.
    const Window* earliest = &found.front();
    for (const Window& window : found) {
      if (window.start < earliest->start) earliest = &window;
    }
    return earliest->kind == Window::Kind::study ? MacHoldsDue::study(earliest->end)
                                                 : MacHoldsDue::sleep(earliest->end);
  }

  const auto* week = examWeekOf(snapshot, calendar);
  const std::string today = calendar.dayString(now);
  if (week == nullptr || !insideExamWeek(*week, today)) return MacHoldsDue::none();

  // Outside windows, an exam-week day is under the Social hold until midnight,
  // except while the main app has a Social span open with budget left.
  const auto endOfDay = calendar.dateAt(today, 1440);
  if (!endOfDay) return MacHoldsDue::none();
  const AllowanceToday allowance = allowanceToday(snapshot, now, calendar);
  if (allowance.since) {
    const std::int64_t used = checkedAdd(allowance.usedMS, elapsedSince(*allowance.since, now));
    const std::int64_t remaining = checkedSub(socialBudgetMS(snapshot), used);
    if (remaining >= 1) {
      return MacHoldsDue::socialOpen(std::min(*endOfDay, now.addingMillis(static_cast<double>(remaining))));
    }
  }
  return MacHoldsDue::social(*endOfDay);
}

namespace {

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
  plan.bundleIDs.insert(row.macBundleIDs.begin(), row.macBundleIDs.end());
  if (plan.allowlist && keepCommunication) {
    plan.bundleIDs.insert(kMacHoldsCommunicationBundleIDs.begin(), kMacHoldsCommunicationBundleIDs.end());
  }
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
  plan.bundleIDs.insert(row.macBundleIDs.begin(), row.macBundleIDs.end());
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

bool isActive(const MacHoldsSnapshot* snapshot, Date now, const Calendar& calendar) {
  if (snapshot == nullptr || snapshot->stopped) return false;
  // An everyday sleep hold never ends by itself.
  if (snapshot->sleep) return true;
  const auto* week = examWeekOf(*snapshot, calendar);
  if (week == nullptr) return false;
  if (calendar.dayString(now) <= week->endDay) return true;
  // After the exam week, a night that began on its last day is seen through.
  return due(*snapshot, now, calendar).kind != MacHoldsDue::Kind::none;
}

}  // namespace kovi::holds::MacHoldsSchedule
