#include "KoviKit/purrl/PurrlFocusExamCountdown.h"

#include <cmath>

namespace kovi {

std::optional<int> purrlDaysLeft(std::string_view today, std::string_view examDay, const Calendar& calendar) {
  const auto from = calendar.parseDay(today);
  const auto to = calendar.parseDay(examDay);
  if (!from || !to) return std::nullopt;
  // Local midnights are whole days apart except across a daylight-saving
  // change, where a day is an hour shorter or longer; rounding absorbs that.
  constexpr double kMillisPerDay = 86'400'000.0;
  const double days = std::round((to->unixMillisExact() - from->unixMillisExact()) / kMillisPerDay);
  return static_cast<int>(days);
}

}  // namespace kovi
