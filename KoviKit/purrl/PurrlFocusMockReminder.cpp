#include "KoviKit/purrl/PurrlFocusMockReminder.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "KoviKit/foundation/Localization.h"

namespace kovi {
namespace {

constexpr double kMillisPerWeek = 7 * 86'400'000.0;

std::string_view paperName(PurrlFocusMockExam exam) {
  switch (exam) {
    case PurrlFocusMockExam::tyt: return "TYT";
    case PurrlFocusMockExam::ayt: return "AYT";
    case PurrlFocusMockExam::ydt: return "YDT";
    case PurrlFocusMockExam::lgsSozel: return "LGS Sözel";
    case PurrlFocusMockExam::lgsSayisal: return "LGS Sayısal";
  }
  return {};
}

struct Occurrence {
  std::string day;
  Date startsAt;
};

std::optional<Occurrence> occurrence(const PurrlFocusMockPlan& plan, long long week, const Calendar& calendar) {
  if (week > 0 && plan.repeat == PurrlFocusMockRepeat::once) return std::nullopt;
  const auto day = calendar.shiftDay(static_cast<int>(week * 7), plan.day);
  if (!day) return std::nullopt;
  const auto startsAt = calendar.dateAt(*day, plan.minute);
  if (!startsAt) return std::nullopt;
  return Occurrence{*day, *startsAt};
}

// The first week worth looking at: a weekly plan that began long ago skips
// its past weeks by arithmetic, one week early so a daylight-saving hour
// cannot make it miss the coming occurrence.
long long firstCandidateWeek(const PurrlFocusMockPlan& plan, Date now, const Calendar& calendar) {
  if (plan.repeat == PurrlFocusMockRepeat::once) return 0;
  const auto first = occurrence(plan, 0, calendar);
  if (!first || first->startsAt > now) return 0;
  const double weeksPast = std::floor((now.unixMillisExact() - first->startsAt.unixMillisExact()) / kMillisPerWeek);
  // Past a few centuries of weeks the calendar cannot shift days anyway.
  return std::max(0LL, static_cast<long long>(std::min(weeksPast, 1e6)) - 1);
}

}  // namespace

std::string PurrlFocusMockReminder::message() const {
  const std::string text = localized(kind == PurrlFocusMockReminderKind::eve
                                         ? "Yarın {paper} denemen var. Kedin de seninle erkenden hazır olacak."
                                         : "{paper} denemen 15 dakika sonra başlıyor. Hazırsan başlayabilirsin.");
  const std::string_view placeholder = "{paper}";
  std::string filled = text;
  if (const auto at = filled.find(placeholder); at != std::string::npos) {
    filled.replace(at, placeholder.size(), paperName(exam));
  }
  return filled;
}

std::vector<PurrlFocusMockReminder> purrlMockReminders(const PurrlFocusMockPlan& plan, Date now,
                                                       const Calendar& calendar) {
  std::vector<PurrlFocusMockReminder> reminders;
  const auto remind = [&](const Occurrence& paper, PurrlFocusMockReminderKind kind, Date fireAt) {
    if (fireAt > now) reminders.push_back({plan.id, plan.exam, paper.day, kind, fireAt, paper.startsAt});
  };
  int planned = 0;
  for (long long week = firstCandidateWeek(plan, now, calendar); planned < kPurrlWeeklyOccurrencesPlanned; ++week) {
    const auto paper = occurrence(plan, week, calendar);
    if (!paper) break;
    if (paper->startsAt <= now) continue;
    ++planned;
    if (const auto eveDay = calendar.shiftDay(-1, paper->day)) {
      if (const auto eve = calendar.dateAt(*eveDay, kPurrlMockEveMinute)) {
        remind(*paper, PurrlFocusMockReminderKind::eve, *eve);
      }
    }
    remind(*paper, PurrlFocusMockReminderKind::soon,
           paper->startsAt.addingMillis(-static_cast<double>(kPurrlMockSoonBeforeMillis)));
  }
  return reminders;
}

}  // namespace kovi
