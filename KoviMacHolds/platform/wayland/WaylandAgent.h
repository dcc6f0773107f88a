#pragma once

#include <filesystem>
#include <memory>
#include <optional>

#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/platform/linux/LinuxDesktopChoice.h"
#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"

namespace kovi::holds::wayland {

// Runs the agent on a compositor that offers layer shell and a window list:
// foreign-toplevel management (`backend` wlroots) or KWin's Plasma window
// management (`backend` plasma), until it exits; the result is its exit
// status. `swaySocket` is sway's IPC socket when the session has one.
int runAgent(std::unique_ptr<WaylandDisplay> display, desktop::LinuxDesktopBackend backend,
             std::optional<std::filesystem::path> swaySocket, MacHoldsAgentOptions options);

}  // namespace kovi::holds::wayland
