#include "KoviMacHolds/cli/DemoSnapshot.h"

#include <string>

namespace kovi::holds {

MacHoldsSnapshot demoSnapshot(std::string_view day, const Calendar& calendar) {
  const std::string today(day);
  MacHoldsSnapshot snapshot;
  snapshot.version = kMacHoldsSnapshotVersion;
  snapshot.stopped = false;
  snapshot.accountScope = "demo";
  snapshot.syncedAt = calendar.dateAt(today, 7 * 60).value_or(Date::now());
  snapshot.examWeek = MacHoldsSnapshot::ExamWeek{
      .startDay = calendar.shiftDay(-2, today).value_or(today),
      .endDay = calendar.shiftDay(3, today).value_or(today),
      .days = 6,
      .firstMinute = 9 * 60,
      .secondMinute = 14 * 60,
      .blockMinutes = 150,
      .sleepStart = 23 * 60 + 30,
      .sleepEnd = 7 * 60,
      .socialMinutes = 45,
      .strictness = "committed",
  };
  snapshot.keepCommunication = true;
  snapshot.allowance = MacFocus4Allowance{.day = today, .usedMS = 20 * 60'000, .since = std::nullopt};
  return snapshot;
}

}  // namespace kovi::holds
