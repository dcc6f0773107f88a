#include <gtest/gtest.h>

#include "KoviMacHolds/platform/linux/LinuxDesktopChoice.h"

namespace kovi::holds::desktop {
namespace {

const std::set<std::string> kWlroots{"wl_compositor", "wl_seat", "zwlr_foreign_toplevel_manager_v1",
                                     "zwlr_layer_shell_v1"};

const std::set<std::string> kPlasma{"wl_compositor", "wl_seat", "org_kde_plasma_window_management",
                                    "zwlr_layer_shell_v1"};
const std::set<std::string> kBoth{"zwlr_foreign_toplevel_manager_v1", "org_kde_plasma_window_management",
                                  "zwlr_layer_shell_v1"};

TEST(LinuxDesktopChoice, WaylandOnlyWhereTheCompositorOffersWindowsAndLayers) {
  struct Case {
    const char* name;
    LinuxSessionProbe probe;
    LinuxDesktopBackend backend;
    const char* noticeMentions;  // empty: no notice
  };
  const Case cases[] = {
      {"an X11 session", {false, false, {}, "XFCE"}, LinuxDesktopBackend::x11, ""},
      {"sway", {true, true, kWlroots, "sway"}, LinuxDesktopBackend::wlroots, ""},
      {"Hyprland, whatever it calls itself", {true, true, kWlroots, ""}, LinuxDesktopBackend::wlroots, ""},
      {"a compositor gone away", {true, false, {}, "sway"}, LinuxDesktopBackend::x11, "could not connect"},
      {"GNOME", {true, true, {"wl_compositor", "wl_seat"}, "ubuntu:GNOME"}, LinuxDesktopBackend::x11, "GNOME Shell"},
      {"KDE Plasma granting the window list", {true, true, kPlasma, "KDE"}, LinuxDesktopBackend::plasma, ""},
      {"KWin granting it outside a Plasma session", {true, true, kPlasma, ""}, LinuxDesktopBackend::plasma, ""},
      {"KDE Plasma keeping the window list from an unknown program",
       {true, true, {"wl_compositor", "zwlr_layer_shell_v1"}, "KDE"}, LinuxDesktopBackend::x11,
       "X-KDE-Wayland-Interfaces"},
      {"Plasma window list without layer shell", {true, true, {"org_kde_plasma_window_management"}, "KDE"},
       LinuxDesktopBackend::x11, "does not offer zwlr_layer_shell_v1"},
      {"both window lists: the wlroots one wins", {true, true, kBoth, "sway"}, LinuxDesktopBackend::wlroots, ""},
      {"window list without layer shell", {true, true, {"zwlr_foreign_toplevel_manager_v1"}, "weston"},
       LinuxDesktopBackend::x11, "does not offer zwlr_layer_shell_v1"},
      {"layer shell without window list", {true, true, {"zwlr_layer_shell_v1"}, ""}, LinuxDesktopBackend::x11,
       "does not offer zwlr_foreign_toplevel_manager_v1"},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.name);
    const auto choice = chooseLinuxDesktop(entry.probe);
    EXPECT_EQ(choice.backend, entry.backend);
    if (std::string_view(entry.noticeMentions).empty()) {
      EXPECT_FALSE(choice.notice.has_value()) << *choice.notice;
    } else {
      ASSERT_TRUE(choice.notice.has_value());
      EXPECT_NE(choice.notice->find(entry.noticeMentions), std::string::npos) << *choice.notice;
      EXPECT_NE(choice.notice->find("XWayland"), std::string::npos) << *choice.notice;
    }
  }
}

}  // namespace
}  // namespace kovi::holds::desktop
