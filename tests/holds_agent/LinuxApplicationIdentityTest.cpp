#include <gtest/gtest.h>

#include "KoviKit/purrl/PurrlFocusMode.h"
#include "KoviMacHolds/platform/x11/X11ApplicationIdentity.h"

namespace kovi::holds::x11 {
namespace {

struct IdentityCase {
  X11WindowClass windowClass;
  const char* bundleIdentifier;
  const char* displayName;
};

TEST(X11ApplicationIdentity, LinuxBuildsOfMacAppsCarryTheirMacIdentifiers) {
  const IdentityCase cases[] = {
      {{"discord", "discord"}, "com.hnc.Discord", "Discord"},
      {{"telegram-desktop", "TelegramDesktop"}, "org.telegram.desktop", "Telegram"},
      {{"steamwebhelper", "Steam"}, "com.valvesoftware.steam", "Steam"},
      {{"spotify", "Spotify"}, "com.spotify.client", "Spotify"},
      {{"Navigator", "firefox"}, "org.mozilla.firefox", "Firefox"},
      {{"Navigator", "firefox-esr"}, "org.mozilla.firefox", "Firefox"},
      {{"google-chrome", "Google-chrome"}, "com.google.Chrome", "Google Chrome"},
      {{"brave-browser", "Brave-browser"}, "com.brave.Browser", "Brave Browser"},
      {{"microsoft-edge", "Microsoft-edge"}, "com.microsoft.edgemac", "Microsoft Edge"},
      {{"opera", "Opera"}, "com.operasoftware.Opera", "Opera"},
      {{"code", "Code"}, "com.microsoft.VSCode", "Visual Studio Code"},
      {{"obsidian", "obsidian"}, "md.obsidian", "Obsidian"},
      {{"1password", "1Password"}, "com.1password.1password", "1Password"},
      {{"bitwarden", "Bitwarden"}, "com.bitwarden.desktop", "Bitwarden"},
      {{"whatsapp-for-linux", "Whatsapp-for-linux"}, "net.whatsapp.WhatsApp", "WhatsApp"},
      // The desktop's own parts, by class in lower case.
      {{"thunar", "Thunar"}, "x11:thunar", "Thunar"},
      {{"org.gnome.Nautilus", "Org.gnome.Nautilus"}, "x11:org.gnome.nautilus", "Org.gnome.Nautilus"},
      {{"xfce4-panel", "Xfce4-panel"}, "x11:xfce4-panel", "Xfce4-panel"},
      // Everything else keeps its class as given.
      {{"gimp", "Gimp"}, "x11:Gimp", "Gimp"},
      {{"xterm", ""}, "x11:xterm", "xterm"},
      // No class at all: no application.
      {{"", ""}, "", ""},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.windowClass.instance + "/" + entry.windowClass.className);
    const auto identity = x11ApplicationIdentity(entry.windowClass);
    EXPECT_EQ(identity.bundleIdentifier, entry.bundleIdentifier);
    EXPECT_EQ(identity.displayName, entry.displayName);
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

TEST(X11ApplicationIdentity, DesktopIdentifiersAreWhatDesktopWindowsGet) {
  const auto& desktopIdentifiers = desktop::linuxDesktopIdentifiers(desktop::LinuxWindowSystem::x11);
  for (const char* name : {"Thunar", "Nemo", "Caja", "Pcmanfm", "Lxpanel", "Gnome-control-center"}) {
    EXPECT_TRUE(desktopIdentifiers.contains(x11ApplicationIdentity({"", name}).bundleIdentifier)) << name;
  }
  EXPECT_FALSE(desktopIdentifiers.contains(x11ApplicationIdentity({"gimp", "Gimp"}).bundleIdentifier));
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
      {"discord", "com.hnc.Discord", "Discord"},
      {"com.discordapp.Discord", "com.hnc.Discord", "Discord"},
      {"org.telegram.desktop", "org.telegram.desktop", "Telegram"},
      {"com.valvesoftware.Steam", "com.valvesoftware.steam", "Steam"},
      {"firefox", "org.mozilla.firefox", "Firefox"},
      {"org.mozilla.firefox", "org.mozilla.firefox", "Firefox"},
      {"com.visualstudio.code", "com.microsoft.VSCode", "Visual Studio Code"},
      // The desktop's own parts, by app_id in lower case.
      {"org.gnome.Nautilus", "wayland:org.gnome.nautilus", "org.gnome.Nautilus", true},
      {"org.kde.dolphin", "wayland:org.kde.dolphin", "org.kde.dolphin", true},
      // Everything else keeps its app_id as given, under the Wayland prefix.
      {"foot", "wayland:foot", "foot"},
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
