#include "KoviMacHolds/platform/wayland/WaylandAgent.h"

#include "KoviMacHolds/platform/linux/LinuxAgent.h"
#include "KoviMacHolds/platform/wayland/LayerShellShieldPanel.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"
#include "KoviMacHolds/platform/wayland/WlrToplevelWorkspace.h"

namespace kovi::holds::wayland {

int runAgent(std::unique_ptr<WaylandDisplay> display, std::optional<std::filesystem::path> swaySocket,
             MacHoldsAgentOptions options) {
  WaylandRunLoop runLoop(*display);
  WlrToplevelWorkspace workspace(*display, runLoop, std::move(swaySocket));
  auto makeShieldPanel = [&](PurrlFontStore fonts, MacHoldsClock clock) -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<LayerShellShieldPanel>(*display, runLoop, fonts, std::move(clock));
  };
  return desktop::runLinuxAgent(workspace, runLoop, makeShieldPanel, std::move(options));
}

}  // namespace kovi::holds::wayland
