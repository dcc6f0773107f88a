// The Linux implementation of the desktop entry points the command line
// uses: the agent runs on Wayland where the compositor offers what it needs,
// and on X11 (XWayland included) everywhere else.
#include <cstdlib>

#include "KoviMacHolds/platform/MacHoldsDesktop.h"
#include "KoviMacHolds/platform/linux/CairoShieldPainter.h"
#include "KoviMacHolds/platform/linux/LinuxDesktopChoice.h"
#include "KoviMacHolds/platform/wayland/WaylandAgent.h"
#include "KoviMacHolds/platform/x11/X11Agent.h"

namespace kovi::holds {

namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

std::expected<int, std::string> runMacHoldsAgent(MacHoldsAgentOptions options) {
  desktop::LinuxSessionProbe probe;
  probe.waylandDisplaySet = !environment("WAYLAND_DISPLAY").empty();
  probe.currentDesktop = environment("XDG_CURRENT_DESKTOP");
  std::unique_ptr<wayland::WaylandDisplay> display;
  if (probe.waylandDisplaySet) {
    auto connected = wayland::WaylandDisplay::connect();
    if (connected) {
      display = std::move(*connected);
      probe.waylandConnected = true;
      probe.waylandGlobals = display->globalInterfaces();
    }
  }
  const auto choice = desktop::chooseLinuxDesktop(probe);
  if (choice.notice) options.log("note: " + *choice.notice);
  if (choice.backend != desktop::LinuxDesktopBackend::x11) {
    const std::string swaySocket = environment("SWAYSOCK");
    return wayland::runAgent(std::move(display), choice.backend,
                             swaySocket.empty() ? std::nullopt : std::optional<std::filesystem::path>(swaySocket),
                             std::move(options));
  }
  display.reset();
  return x11::runAgent(std::move(options));
}

std::expected<void, std::string> renderMacHoldsShieldPng(const MacHoldsShieldView& view, const PurrlFontStore& fonts,
                                                         const Calendar& calendar, const std::filesystem::path& file) {
  return desktop::writeShieldPng(view, fonts, calendar, file);
}

}  // namespace kovi::holds
