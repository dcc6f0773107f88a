#pragma once

#include <functional>
#include <memory>

#include "KoviMacHolds/MacHoldsApp.h"
#include "KoviMacHolds/PurrlFontStore.h"
#include "KoviMacHolds/platform/MacRunLoop.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/MacWorkspace.h"

namespace kovi::holds::desktop {

// Makes the shield panel of a window system, set in the fonts the
// preferences choose.
using LinuxShieldPanelMaker = std::function<std::unique_ptr<MacShieldPanel>(PurrlFontStore fonts, MacHoldsClock clock)>;

// What starting the agent is on every Linux desktop once the window system
// is connected: the app group's shared preferences (font choices, and the
// cat's level when `options` names no stage), the launch identity of the
// executable, the delegate; then the loop until the agent exits. The result
// is the exit status.
int runLinuxAgent(MacWorkspace& workspace, MacRunLoop& runLoop, LinuxShieldPanelMaker makeShieldPanel,
                  MacHoldsAgentOptions options);

}  // namespace kovi::holds::desktop
