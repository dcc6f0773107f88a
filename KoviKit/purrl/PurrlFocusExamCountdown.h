#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/purrl/PurrlFocusSubject.h"

namespace kovi {

// The days left until an exam the person prepares for.
struct PurrlFocusExamCountdown {
  PurrlFocusExamKind exam = PurrlFocusExamKind::other;
  std::optional<std::string> label;
  std::string day;  // the exam day
  int daysLeft = 0;
  bool operator==(const PurrlFocusExamCountdown&) const = default;
};

template <>
struct JsonRecordFields<PurrlFocusExamCountdown> : LenientJsonRecord {
  using R = PurrlFocusExamCountdown;
  static constexpr auto fields = std::tuple{field("exam", &R::exam), field("label", &R::label),
                                            field("day", &R::day), field("daysLeft", &R::daysLeft)};
};

// Whole calendar days from `today` until `examDay`, as the countdown shows
// them before the service answers: the exam day itself is not counted, so an
// exam tomorrow has 1 day left and an exam today 0; a past exam counts
// negative. Nullopt when either day string names no day of `calendar`.
std::optional<int> purrlDaysLeft(std::string_view today, std::string_view examDay, const Calendar& calendar);

}  // namespace kovi
