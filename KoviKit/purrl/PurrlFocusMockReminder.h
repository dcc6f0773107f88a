#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlFocusMockCalendar.h"

namespace kovi {

enum class PurrlFocusMockReminderKind {
  eve,   // the evening before the paper
  soon,  // when the paper can first be started
};

template <>
struct EnumNames<PurrlFocusMockReminderKind> {
  static constexpr std::array table{
      std::pair{PurrlFocusMockReminderKind::eve, std::string_view("eve")},
      std::pair{PurrlFocusMockReminderKind::soon, std::string_view("soon")},
  };
};

// A local reminder of a planned paper; it lives on the device only.
struct PurrlFocusMockReminder {
  std::string planID;
  PurrlFocusMockExam exam = PurrlFocusMockExam::tyt;
  std::string day;
  PurrlFocusMockReminderKind kind = PurrlFocusMockReminderKind::eve;
  Date fireAt;
  Date startsAt;
  bool operator==(const PurrlFocusMockReminder&) const = default;

  // The Turkish text the notification shows, through the localization lookup.
  std::string message() const;
};

// The `eve` reminder fires at 20:00 local time on the day before the paper.
inline constexpr int kPurrlMockEveMinute = 20 * 60;
// The `soon` reminder fires 15 minutes before the start: the moment the paper
// can first be started.
inline constexpr UnixMillis kPurrlMockSoonBeforeMillis = PurrlFocusMockNext::kEarliestBeforeMillis;
// How many coming occurrences of a weekly plan get reminders: four weeks, so
// a few plans stay well inside the platforms' limits on pending notifications.
inline constexpr int kPurrlWeeklyOccurrencesPlanned = 4;

// The reminders still to fire after `now` for `plan`: for each coming
// occurrence (the plan's day for a `once` plan; for a `weekly` plan the next
// `kPurrlWeeklyOccurrencesPlanned` weeks whose paper starts after `now`) an
// `eve` and a `soon` reminder, each only when it fires after `now`, ordered
// by when they fire. Empty when the plan's day or minute names no time.
std::vector<PurrlFocusMockReminder> purrlMockReminders(const PurrlFocusMockPlan& plan, Date now,
                                                       const Calendar& calendar);

}  // namespace kovi
