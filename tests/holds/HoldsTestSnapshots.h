#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

// Calendars, instants and snapshots the holds tests build on.
namespace kovi::holds::testing {

inline Calendar calendarIn(const char* zone) {
  auto calendar = Calendar::inZone(zone);
  EXPECT_TRUE(calendar.has_value()) << zone;
  return calendar ? *calendar : Calendar::current();
}

inline Date at(const char* iso) {
  const auto millis = parseInstant(iso);
  EXPECT_TRUE(millis.has_value()) << iso;
  return Date::fromUnixMillis(static_cast<double>(millis.value_or(0)));
}

inline UnixMillis millisAt(const char* iso) { return at(iso).unixMillis(); }

inline constexpr std::int64_t kMinute = 60'000;

// An exam week 2026-11-20 to 2026-11-26: study blocks 09:00–11:30 and
// 14:00–16:30, nights 23:00–07:00, a 45-minute Social allowance.
inline MacHoldsSnapshot examWeekSnapshot() {
  MacHoldsSnapshot snapshot;
  snapshot.syncedAt = at("2026-11-20T08:00:00+03:00");
  snapshot.keepCommunication = true;
  snapshot.examWeek = MacHoldsSnapshot::ExamWeek{
      .startDay = "2026-11-20", .endDay = "2026-11-26", .days = 7, .firstMinute = 9 * 60, .secondMinute = 14 * 60,
      .blockMinutes = 150, .sleepStart = 23 * 60, .sleepEnd = 7 * 60, .socialMinutes = 45, .strictness = "committed"};
  return snapshot;
}

// `snapshot` after `change`, for table rows that vary one field.
template <class Change>
MacHoldsSnapshot with(MacHoldsSnapshot snapshot, Change change) {
  change(snapshot);
  return snapshot;
}

// `snapshot` with a Social allowance record for `day` (a span open since `since`, if given).
inline MacHoldsSnapshot withAllowance(MacHoldsSnapshot snapshot, const char* day, std::int64_t usedMS,
                                      std::optional<const char*> since = std::nullopt) {
  snapshot.allowance = MacFocus4Allowance{day, usedMS, since ? std::optional(millisAt(*since)) : std::nullopt};
  return snapshot;
}

// Only an everyday sleep hold.
inline MacHoldsSnapshot sleepSnapshot(int startMinute, int endMinute) {
  MacHoldsSnapshot snapshot;
  snapshot.syncedAt = at("2026-11-20T08:00:00+03:00");
  snapshot.sleep = MacHoldsSnapshot::Sleep{startMinute, endMinute, "committed"};
  return snapshot;
}

}  // namespace kovi::holds::testing
