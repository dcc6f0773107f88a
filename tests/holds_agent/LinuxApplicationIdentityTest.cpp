#include <gtest/gtest.h>

#include "KoviKit/purrl/PurrlFocusMode.h"
#include "KoviMacHolds/platform/x11/X11ApplicationIdentity.h"

namespace kovi::holds::x11 {
namespace {

struct IdentityCase {
  X11WindowClass windowClass;
  const char* bundleIdentifier;
  const char* displayName;
  bool isDesktopPart = false;
};

TEST(X11ApplicationIdentity, LinuxBuildsOfMacAppsCarryTheirMacIdentifiers) {
  const IdentityCase cases[] = {
      // Known by instance, by class, or by a variant of the class; that every
      // row of the table names a preset's identifier is the next test.
      {{"discord", "discord"}, "com.hnc.Discord", "Discord"},
      {{"telegram-desktop", "TelegramDesktop"}, "org.telegram.desktop", "Telegram"},
      {{"steamwebhelper", "Steam"}, "com.valvesoftware.steam", "Steam"},
      {{"Navigator", "firefox"}, "org.mozilla.firefox", "Firefox"},
      {{"Navigator", "firefox-esr"}, "org.mozilla.firefox", "Firefox"},
      {{"code", "Code"}, "com.microsoft.VSCode", "Visual Studio Code"},
      // The desktop's own parts, by class in lower case.
      {{"thunar", "Thunar"}, "x11:thunar", "Thunar", true},
      {{"org.gnome.Nautilus", "Org.gnome.Nautilus"}, "x11:org.gnome.nautilus", "Org.gnome.Nautilus", true},
      {{"", "Gnome-control-center"}, "x11:gnome-control-center", "Gnome-control-center", true},
      // Everything else keeps its class as given.
      {{"gimp", "Gimp"}, "x11:Gimp", "Gimp"}, {{"xterm", ""}, "x11:xterm", "xterm"},
      // No class at all: no application.
      {{"", ""}, "", ""},
  };
  const auto& desktopIdentifiers = desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::x11);
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.windowClass.instance + "/" + entry.windowClass.className);
    const auto identity = x11ApplicationIdentity(entry.windowClass);
    EXPECT_EQ(identity.bundleIdentifier, entry.bundleIdentifier);
    EXPECT_EQ(identity.displayName, entry.displayName);
    EXPECT_EQ(desktopIdentifiers.contains(identity.bundleIdentifier), entry.isDesktopPart);
  }
}

TEST(X11ApplicationIdentity, EveryMacIdentifierItUsesIsOneThePresetsName) {
  std::set<std::string> presetIdentifiers{"app.kovi.app.mac"};
  for (const auto& row : purrlFocusModeTable()) presetIdentifiers.insert(row.macBundleIDs.begin(), row.macBundleIDs.end());
  const X11WindowClass classes[] = {{"discord", ""},  {"telegram-desktop", ""}, {"steam", ""},  {"spotify", ""},
                                    {"firefox", ""},  {"google-chrome", ""},    {"brave-browser", ""},
                                    {"microsoft-edge", ""}, {"opera", ""},      {"code", ""},   {"obsidian", ""},
                                    {"1password", ""}, {"bitwarden", ""},       {"whatsapp-for-linux", ""}};
  for (const auto& windowClass : classes) {
    EXPECT_TRUE(presetIdentifiers.contains(x11ApplicationIdentity(windowClass).bundleIdentifier))
        << windowClass.instance;
  }
}

// A Wayland toplevel names its application by app_id alone: the native name
// or, for Flatpak builds, a reverse-DNS one; both reach the same Mac identifier.
TEST(WaylandApplicationIdentity, AppIdsOfNativeAndFlatpakBuildsShareTheTable) {
  struct Case {
    const char* appId;
    const char* bundleIdentifier;
    const char* displayName;
    bool isDesktopPart = false;
  };
  const Case cases[] = {
      {"discord", "com.hnc.Discord", "Discord"}, {"com.discordapp.Discord", "com.hnc.Discord", "Discord"},
      {"firefox", "org.mozilla.firefox", "Firefox"}, {"org.mozilla.firefox", "org.mozilla.firefox", "Firefox"},
      {"com.visualstudio.code", "com.microsoft.VSCode", "Visual Studio Code"},
      // The desktop's own parts, by app_id in lower case.
      {"org.gnome.Nautilus", "wayland:org.gnome.nautilus", "org.gnome.Nautilus", true},
      // Everything else keeps its app_id as given, under the Wayland prefix.
      {"org.gnome.TextEditor", "wayland:org.gnome.TextEditor", "org.gnome.TextEditor"},
      // A toplevel without an app_id names no application.
      {"", "", ""},
  };
  const auto& desktopIdentifiers = desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::wayland);
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.appId);
    const auto identity =
        desktop::linuxApplicationIdentity(desktop::LinuxWindowSystem::wayland, {entry.appId}, entry.appId);
    EXPECT_EQ(identity.bundleIdentifier, entry.bundleIdentifier);
    EXPECT_EQ(identity.displayName, entry.displayName);
    EXPECT_EQ(desktopIdentifiers.contains(identity.bundleIdentifier), entry.isDesktopPart);
  }
}

}  // namespace
}  // namespace kovi::holds::x11
