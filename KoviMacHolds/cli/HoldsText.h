#pragma once

#include <string>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

// The sentences the inspection commands print for people.
namespace kovi::holds {

// Why there is no snapshot, as a clause: "the snapshot is missing at PATH",
// "the snapshot at PATH does not decode (examWeek: expected an object, …)".
std::string snapshotProblemText(const MacHoldsSnapshotFailure& failure, std::string_view source);

// A local wall-clock time: "12:50", with seconds and milliseconds only when
// they are not zero ("12:25:30.250").
std::string clockText(UnixMillis at, const Calendar& calendar);

// `at` relative to the day of `now`: "12:50", "07:00 tomorrow", "midnight"
// (the start of tomorrow) or "09:00 on 2026-11-25".
std::string clockTextFrom(Date at, Date now, const Calendar& calendar);

// What a kind of due hold means for the apps in front: "only study apps may
// come to the front", "nothing is held".
std::string_view holdEffectText(MacHoldsDue::Kind kind);

// The kind's name in a sentence: "Study hold", "Social span open".
std::string_view holdNameText(MacHoldsDue::Kind kind);

}  // namespace kovi::holds
