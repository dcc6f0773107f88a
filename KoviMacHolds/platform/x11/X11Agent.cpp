#include "KoviMacHolds/platform/x11/X11Agent.h"

#include <memory>

#include "KoviMacHolds/platform/linux/LinuxAgentPreferences.h"
#include "KoviMacHolds/platform/linux/LinuxLaunchIdentity.h"
#include "KoviMacHolds/platform/x11/X11Display.h"
#include "KoviMacHolds/platform/x11/X11RunLoop.h"
#include "KoviMacHolds/platform/x11/X11ShieldPanel.h"
#include "KoviMacHolds/platform/x11/X11Workspace.h"

namespace kovi::holds::x11 {

std::expected<int, std::string> runAgent(MacHoldsAgentOptions options) {
  auto display = X11Display::open();
  if (!display) return std::unexpected(display.error());

  X11RunLoop runLoop(*display);
  X11Workspace workspace(*display, runLoop);
  desktop::LinuxLaunchIdentity launchIdentity;

  auto preferences = desktop::linuxAgentPreferences(options);
  MacHoldsClock clock = options.clock;
  auto makeShieldPanel = [&, preferences, clock]() -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<X11ShieldPanel>(*display, runLoop, PurrlFontStore(*preferences), clock);
  };

  MacHoldsAppDelegate delegate(MacHoldsPlatform{workspace, runLoop, launchIdentity, makeShieldPanel},
                               std::move(options));
  delegate.applicationDidFinishLaunching();
  return runLoop.run();
}

}  // namespace kovi::holds::x11
