#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// A device's signed report that its protection changed on its own account:
// idle or a pomodoro break relaxed it, renewed activity or a pomodoro work
// phase restored it. `expectedCommandID` names the command the device
// expected to be answering, if any.
struct WorkingProtectionTransition {
  enum class Cause { idle, pomodoroBreak, activityResume, pomodoroWork };

  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::string commandID;
  UnixMillis at = 0;
  Cause cause = Cause::idle;
  std::optional<std::string> expectedCommandID;

  bool operator==(const WorkingProtectionTransition&) const = default;
};

template <>
struct EnumNames<WorkingProtectionTransition::Cause> {
  using Cause = WorkingProtectionTransition::Cause;
  static constexpr std::array table{
      std::pair{Cause::idle, std::string_view("idle")},
      std::pair{Cause::pomodoroBreak, std::string_view("pomodoroBreak")},
      std::pair{Cause::activityResume, std::string_view("activityResume")},
      std::pair{Cause::pomodoroWork, std::string_view("pomodoroWork")},
  };
};

}  // namespace kovi
