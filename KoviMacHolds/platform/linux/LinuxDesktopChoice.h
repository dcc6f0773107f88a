#pragma once

#include <optional>
#include <set>
#include <string>

namespace kovi::holds::desktop {

// What the agent learnt about the session before choosing a backend.
struct LinuxSessionProbe {
  // $WAYLAND_DISPLAY is set; and, when it is, whether connecting worked.
  bool waylandDisplaySet = false;
  bool waylandConnected = false;
  // The interfaces of the globals the compositor offers to the agent.
  std::set<std::string> waylandGlobals;
  // $XDG_CURRENT_DESKTOP ("sway", "KDE", "GNOME", "ubuntu:GNOME").
  std::string currentDesktop;
};

enum class LinuxDesktopBackend { wlroots, plasma, x11 };

struct LinuxDesktopChoice {
  LinuxDesktopBackend backend = LinuxDesktopBackend::x11;
  // Said once at start when the agent cannot hold everything on this
  // desktop: why, and what it holds instead.
  std::optional<std::string> notice;
  bool operator==(const LinuxDesktopChoice&) const = default;
};

// The Wayland backend runs where the compositor offers layer shell and a
// window list: zwlr_foreign_toplevel_manager_v1 (wlroots compositors), else
// org_kde_plasma_window_management (KWin, to a program whose installed
// .desktop file asks for it). Everywhere else the agent runs on X11, which on
// a Wayland desktop reaches only the XWayland applications, and says so.
LinuxDesktopChoice chooseLinuxDesktop(const LinuxSessionProbe& probe);

}  // namespace kovi::holds::desktop
