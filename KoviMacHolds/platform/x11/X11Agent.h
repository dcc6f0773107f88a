#pragma once

#include <expected>
#include <string>

#include "KoviMacHolds/MacHoldsApp.h"

namespace kovi::holds::x11 {

// Runs the agent on the X11 desktop of $DISPLAY until it exits; the result
// is its exit status, or why the display could not be opened.
std::expected<int, std::string> runAgent(MacHoldsAgentOptions options);

}  // namespace kovi::holds::x11
