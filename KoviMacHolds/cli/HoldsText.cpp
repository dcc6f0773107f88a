#include "KoviMacHolds/cli/HoldsText.h"

#include <cstdio>

namespace kovi::holds {

std::string snapshotProblemText(const MacHoldsSnapshotFailure& failure, std::string_view source) {
  using Kind = MacHoldsSnapshotFailure::Kind;
  const std::string where(source);
  switch (failure.kind) {
    case Kind::undecodable: return "the snapshot at " + where + " does not decode (" + failure.reason + ")";
    case Kind::unsupportedVersion: return "the snapshot at " + where + " is not usable: " + failure.reason;
    case Kind::missing:
    case Kind::unreadable:
    case Kind::tooLarge: break;
  }
  // Read failures already name the file.
  return failure.reason;
}

std::string clockText(UnixMillis at, const Calendar& calendar) {
  const LocalFields local = calendar.fieldsAt(Date::fromUnixMillis(static_cast<double>(at)));
  const int millis = static_cast<int>(((at % 1000) + 1000) % 1000);
  char text[32];
  if (millis != 0) {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", local.hour, local.minute, local.second, millis);
  } else if (local.second != 0) {
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", local.hour, local.minute, local.second);
  } else {
    std::snprintf(text, sizeof text, "%02d:%02d", local.hour, local.minute);
  }
  return text;
}

std::string clockTextFrom(Date at, Date now, const Calendar& calendar) {
  const std::string clock = clockText(at.unixMillis(), calendar);
  const std::string day = calendar.dayString(at);
  const std::string today = calendar.dayString(now);
  if (day == today) return clock;
  if (calendar.shiftDay(1, today) == day) return clock == "00:00" ? "midnight" : clock + " tomorrow";
  return clock + " on " + day;
}

std::string_view holdEffectText(MacHoldsDue::Kind kind) {
  switch (kind) {
    case MacHoldsDue::Kind::study: return "only study apps may come to the front";
    case MacHoldsDue::Kind::sleep: return "games, messengers and streaming apps are kept from the front";
    case MacHoldsDue::Kind::social: return "no Social span is open, so games, messengers and streaming apps are kept from the front";
    case MacHoldsDue::Kind::socialOpen: return "nothing is held while it lasts";
    case MacHoldsDue::Kind::none: break;
  }
  return "nothing is held";
}

std::string_view holdNameText(MacHoldsDue::Kind kind) {
  switch (kind) {
    case MacHoldsDue::Kind::study: return "Study hold";
    case MacHoldsDue::Kind::sleep: return "Sleep hold";
    case MacHoldsDue::Kind::social: return "Social hold";
    case MacHoldsDue::Kind::socialOpen: return "Social span open";
    case MacHoldsDue::Kind::none: break;
  }
  return "No hold";
}

}  // namespace kovi::holds
