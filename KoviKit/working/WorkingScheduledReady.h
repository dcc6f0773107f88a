#pragma once

#include <array>
#include <expected>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// The phone's note that the participant is ready for one scheduled window:
// for whom, in which room under which rules, which window, when it was
// observed, which session plan it saw and which Macs could arm the start.
struct WorkingScheduledReady {
  // Why a readiness cannot be confirmed; each has the text users read.
  enum class Failure { invalidSnapshot, changed, noMac, expired, background };

  std::string ownerID;
  std::string roomID;
  std::string rulesHash;
  std::string windowID;
  UnixMillis startsAt = 0;
  UnixMillis endsAt = 0;
  UnixMillis observedAt = 0;
  std::string sessionFingerprint;
  std::vector<std::string> availableMacIDs;
  bool requiresPrearm = false;
  bool operator==(const WorkingScheduledReady&) const = default;
};

template <>
struct EnumNames<WorkingScheduledReady::Failure> {
  using Failure = WorkingScheduledReady::Failure;
  static constexpr std::array table{
      std::pair{Failure::invalidSnapshot, std::string_view("invalidSnapshot")},
      std::pair{Failure::changed, std::string_view("changed")},
      std::pair{Failure::noMac, std::string_view("noMac")},
      std::pair{Failure::expired, std::string_view("expired")},
      std::pair{Failure::background, std::string_view("background")},
  };
};

template <>
struct JsonRecordFields<WorkingScheduledReady> : StrictJsonRecord {
  using R = WorkingScheduledReady;
  static constexpr auto fields = std::tuple{
      field("ownerID", &R::ownerID),
      field("roomID", &R::roomID),
      field("rulesHash", &R::rulesHash),
      field("windowID", &R::windowID),
      field("startsAt", &R::startsAt),
      field("endsAt", &R::endsAt),
      field("observedAt", &R::observedAt),
      field("sessionFingerprint", &R::sessionFingerprint),
      field("availableMacIDs", &R::availableMacIDs),
      field("requiresPrearm", &R::requiresPrearm)};
};

// The Turkish text shown for a failure.
std::string_view workingScheduledReadyFailureText(WorkingScheduledReady::Failure failure);

// What the phone knows when the participant confirms a readiness.
struct WorkingScheduledReadyContext {
  std::string ownerID;
  std::string roomID;
  std::string rulesHash;
  std::string sessionFingerprint;
  UnixMillis now = 0;
  bool inForeground = false;
};

// Whether `ready` may be confirmed now. Checked in this order, so the most
// fundamental problem is the one reported: a snapshot that cannot describe a
// window (an empty identifier, a window that does not end after it starts, an
// observation after the window) is `invalidSnapshot`; a different account,
// room, rule set or session plan is `changed`; a window that has ended is
// `expired`; a start that needs a pre-armed Mac with none available is
// `noMac`; and a confirmation from the background is `background`.
std::expected<void, WorkingScheduledReady::Failure> checkWorkingScheduledReady(
    const WorkingScheduledReady& ready, const WorkingScheduledReadyContext& context);

}  // namespace kovi
