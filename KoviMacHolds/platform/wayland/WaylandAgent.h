#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"

namespace kovi::holds::wayland {

// Runs the agent on a wlroots compositor that offers foreign-toplevel
// management and layer shell, until it exits; the result is its exit status.
// `swaySocket` is sway's IPC socket when the session has one.
int runAgent(std::unique_ptr<WaylandDisplay> display, std::optional<std::filesystem::path> swaySocket,
             MacHoldsAgentOptions options);

}  // namespace kovi::holds::wayland
