#include "KoviMacHolds/platform/wayland/WaylandAgent.h"

#include "KoviMacHolds/platform/linux/LinuxAgentPreferences.h"
#include "KoviMacHolds/platform/linux/LinuxLaunchIdentity.h"
#include "KoviMacHolds/platform/wayland/LayerShellShieldPanel.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"
#include "KoviMacHolds/platform/wayland/WlrToplevelWorkspace.h"

namespace kovi::holds::wayland {

int runAgent(std::unique_ptr<WaylandDisplay> display, std::optional<std::filesystem::path> swaySocket,
             MacHoldsAgentOptions options) {
  WaylandRunLoop runLoop(*display);
  WlrToplevelWorkspace workspace(*display, runLoop, std::move(swaySocket));
  desktop::LinuxLaunchIdentity launchIdentity;

  auto preferences = desktop::linuxAgentPreferences(options);
  MacHoldsClock clock = options.clock;
  auto makeShieldPanel = [&, preferences, clock]() -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<LayerShellShieldPanel>(*display, runLoop, PurrlFontStore(*preferences), clock);
  };

  MacHoldsAppDelegate delegate(MacHoldsPlatform{workspace, runLoop, launchIdentity, makeShieldPanel},
                               std::move(options));
  delegate.applicationDidFinishLaunching();
  return runLoop.run();
}

}  // namespace kovi::holds::wayland
