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
  const bool layerShell = globals.contains(kLayerShell);
  if (globals.contains(kForeignToplevel) && layerShell) return {LinuxDesktopBackend::wlroots, {}};
  const bool plasmaWindows = globals.contains(kPlasmaWindows);
  if (plasmaWindows && layerShell) return {LinuxDesktopBackend::plasma, {}};
  if (names(probe.currentDesktop, "KDE") && !plasmaWindows) {
    // KWin hides the window list from programs it does not know.
    return {LinuxDesktopBackend::x11,
            std::string("KWin did not grant ") + kPlasmaWindows +
                " (it does only to a program whose installed .desktop file names it in X-KDE-Wayland-Interfaces "
                "and whose Exec= is this program's absolute path, as the kovi-holds package installs it), so this "
                "agent can only hold XWayland applications"};
  }
  if (names(probe.currentDesktop, "GNOME")) {
    return {LinuxDesktopBackend::x11,
            "GNOME Shell offers other programs no way to list, minimise or cover windows on Wayland, so this agent "
            "can only hold XWayland applications"};
  }
  return {LinuxDesktopBackend::x11,
          std::string("this Wayland compositor does not offer ") +
              (globals.contains(kForeignToplevel) || plasmaWindows ? kLayerShell : kForeignToplevel) +
              ", so this agent can only hold XWayland applications"};
}

}  // namespace kovi::holds::desktop
