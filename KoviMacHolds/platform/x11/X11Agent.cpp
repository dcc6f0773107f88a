#include "KoviMacHolds/platform/x11/X11Agent.h"

#include "KoviMacHolds/platform/linux/LinuxAgent.h"
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
  auto makeShieldPanel = [&](PurrlFontStore fonts, MacHoldsClock clock) -> std::unique_ptr<MacShieldPanel> {
    return std::make_unique<X11ShieldPanel>(*display, runLoop, fonts, std::move(clock));
  };
  return desktop::runLinuxAgent(workspace, runLoop, makeShieldPanel, std::move(options));
}

}  // namespace kovi::holds::x11
