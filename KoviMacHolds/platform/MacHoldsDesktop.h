#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/MacHoldsShield.h"
#include "KoviMacHolds/PurrlFontStore.h"

// What each desktop backend provides to the command line: running the agent
// on this machine's desktop and drawing the shield without one. The X11
// backend implements these on Linux; an AppKit backend implements the same
// on the Mac.
namespace kovi::holds {

// Launches the agent and runs its loop until it exits; the result is the
// exit status (0 done or another copy runs, 75 executable replaced), or why
// the desktop could not be reached.
std::expected<int, std::string> runMacHoldsAgent(MacHoldsAgentOptions options);

// Paints the shield at its fitting size into a PNG file, with the same
// drawing code as the on-screen panel.
std::expected<void, std::string> renderMacHoldsShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                         const Calendar& calendar, const std::filesystem::path& file);

}  // namespace kovi::holds
