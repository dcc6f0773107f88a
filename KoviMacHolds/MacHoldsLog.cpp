#include "KoviMacHolds/MacHoldsLog.h"

#include <cstdio>

#include "KoviKit/foundation/Json.h"

namespace kovi::holds {

MacHoldsLog standardErrorLog() {
  return [](std::string_view line) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(stderr);
  };
}

std::string wallClockTime(Date date, const Calendar& calendar) {
  const LocalFields fields = calendar.fieldsAt(date);
  char text[16];
  std::snprintf(text, sizeof text, "%02d:%02d", fields.hour, fields.minute);
  return text;
}

std::string holdLogLine(const MacHoldsDue& due, const Calendar& calendar) {
  // socialOpen never comes with a plan, so a held Social case reads "social".
  std::string line = "hold " + std::string(enumName(due.kind));
  if (due.until) line += " until " + wallClockTime(*due.until, calendar);
  return line;
}

MacHoldsClock MacHoldsClock::system() { return {[] { return Date::now(); }, [] { return Calendar::current(); }}; }

}  // namespace kovi::holds
