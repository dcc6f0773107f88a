#include "KoviMacHolds/platform/linux/LinuxDesktopChoice.h"

namespace kovi::holds::desktop {

namespace {

constexpr const char* kForeignToplevel = "zwlr_foreign_toplevel_manager_v1";
constexpr const char* kLayerShell = "zwlr_layer_shell_v1";
constexpr const char* kPlasmaWindows = "org_kde_plasma_window_management";

bool names(const std::string& currentDesktop, const char* desktop) {
  return currentDesktop.find(desktop) != std::string::npos;
}

}  // namespace

LinuxDesktopChoice chooseLinuxDesktop(const LinuxSessionProbe& probe) {
  if (!probe.waylandDisplaySet) return {};
  if (!probe.waylandConnected) {
    return {LinuxDesktopBackend::x11,
            "could not connect to the Wayland display; only XWayland applications can be held"};
  }
  const auto& globals = probe.waylandGlobals;
  if (globals.contains(kForeignToplevel) && globals.contains(kLayerShell)) return {LinuxDesktopBackend::wlroots, {}};
  if (globals.contains(kPlasmaWindows) || names(probe.currentDesktop, "KDE")) {
    return {LinuxDesktopBackend::x11,
            "on KDE Plasma this agent follows only XWayland applications: native Wayland windows are not "
            "held yet"};
  }
  if (names(probe.currentDesktop, "GNOME")) {
    return {LinuxDesktopBackend::x11,
            "GNOME Shell offers other programs no way to list, minimise or cover windows on Wayland, so this agent "
            "can only hold XWayland applications"};
  }
  return {LinuxDesktopBackend::x11,
          std::string("this Wayland compositor does not offer ") +
              (globals.contains(kForeignToplevel) ? kLayerShell : kForeignToplevel) +
              ", so this agent can only hold XWayland applications"};
}

}  // namespace kovi::holds::desktop
