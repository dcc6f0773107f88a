#pragma once

#include <optional>
#include <string_view>

#include "KoviKit/working/WorkingSessionEngine.h"

namespace kovi {

// What a session's status shows the user, chosen from the engine's state.
// A completed session has no status line.
std::optional<std::string_view> workingSessionStatusLine(const WorkingSessionEngine& engine);

// How the device's protection stands with what the server last verified.
enum class WorkingProtectionObservation {
  released,      // the session is over but the protection is still on
  unobserved,    // nothing has shown the protection yet
  applied,       // ready as the rules require and currently verified
  stale,         // offline beyond the last verified state
  confirmation,  // set locally, the server's confirmation has not come yet
};

WorkingProtectionObservation workingProtectionObservation(const WorkingSessionEngine& engine);

// The protection status line: the iPhone line whenever the rules need iPhone
// protection that is not ready, otherwise the observation's line.
std::string_view workingProtectionStatusLine(const WorkingSessionEngine& engine);

// Why the time the session is in now does not count as work, if it does not.
std::optional<std::string_view> workingExclusionReason(const WorkingSessionEngine& engine);

}  // namespace kovi
