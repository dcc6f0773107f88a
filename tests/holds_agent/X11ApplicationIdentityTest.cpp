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
  for (const char* name : {"Thunar", "Nemo", "Caja", "Pcmanfm", "Lxpanel", "Gnome-control-center"}) {
    EXPECT_TRUE(x11DesktopIdentifiers().contains(x11ApplicationIdentity({"", name}).bundleIdentifier)) << name;
  }
  EXPECT_FALSE(x11DesktopIdentifiers().contains(x11ApplicationIdentity({"gimp", "Gimp"}).bundleIdentifier));
}

}  // namespace
}  // namespace kovi::holds::x11
