#include "KoviMacHolds/platform/wayland/WaylandAgent.h"

#include "KoviMacHolds/platform/linux/LinuxAgent.h"
#include "KoviMacHolds/platform/wayland/LayerShellShieldPanel.h"
#include "KoviMacHolds/platform/wayland/PlasmaWindowWorkspace.h"
#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"
#include "KoviMacHolds/platform/wayland/WlrToplevelWorkspace.h"

namespace kovi::holds::wayland {

int runAgent(std::unique_ptr<WaylandDisplay> display, desktop::LinuxDesktopBackend backend,
             std::optional<std::filesystem::path> swaySocket, MacHoldsAgentOptions options) {
  WaylandRunLoop runLoop(*display);
  std::unique_ptr<WaylandWindowWorkspace> workspace;
  if (backend == desktop::LinuxDesktopBackend::plasma) {
    workspace = std::make_unique<PlasmaWindowWorkspace>(*display, runLoop);
  } else {
    workspace = std::make_unique<WlrToplevelWorkspace>(*display, runLoop, std::move(swaySocket));
  }
  auto makeShieldPanel = [&](PurrlFontStore fonts, MacHoldsClock clock) -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<LayerShellShieldPanel>(*display, runLoop, fonts, std::move(clock));
  };
  return desktop::runLinuxAgent(*workspace, runLoop, makeShieldPanel, std::move(options));
}

}  // namespace kovi::holds::wayland
