#include "KoviMacHolds/platform/linux/LinuxApplicationIdentity.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds::desktop {

namespace {

struct KnownApplication {
  std::string_view name;  // WM_CLASS class or instance, or Wayland app_id, lower case
  std::string_view bundleIdentifier;
  std::string_view displayName;
};

// Applications that ship for Linux under the Mac identifiers the presets name,
// by the names their X11 windows and Wayland toplevels carry (Flatpak builds
// use reverse-DNS app_ids).
constexpr std::array kKnownApplications{
    KnownApplication{"discord", "com.hnc.Discord", "Discord"},
    KnownApplication{"com.discordapp.discord", "com.hnc.Discord", "Discord"},
    KnownApplication{"telegramdesktop", "org.telegram.desktop", "Telegram"},
    KnownApplication{"telegram-desktop", "org.telegram.desktop", "Telegram"},
    KnownApplication{"org.telegram.desktop", "org.telegram.desktop", "Telegram"},
    KnownApplication{"steam", "com.valvesoftware.steam", "Steam"},
    KnownApplication{"com.valvesoftware.steam", "com.valvesoftware.steam", "Steam"},
    KnownApplication{"spotify", "com.spotify.client", "Spotify"},
    KnownApplication{"com.spotify.client", "com.spotify.client", "Spotify"},
    KnownApplication{"firefox", "org.mozilla.firefox", "Firefox"},
    KnownApplication{"firefox-esr", "org.mozilla.firefox", "Firefox"},
    KnownApplication{"org.mozilla.firefox", "org.mozilla.firefox", "Firefox"},
    KnownApplication{"google-chrome", "com.google.Chrome", "Google Chrome"},
    KnownApplication{"com.google.chrome", "com.google.Chrome", "Google Chrome"},
    KnownApplication{"brave-browser", "com.brave.Browser", "Brave Browser"},
    KnownApplication{"com.brave.browser", "com.brave.Browser", "Brave Browser"},
    KnownApplication{"microsoft-edge", "com.microsoft.edgemac", "Microsoft Edge"},
    KnownApplication{"com.microsoft.edge", "com.microsoft.edgemac", "Microsoft Edge"},
    KnownApplication{"opera", "com.operasoftware.Opera", "Opera"},
    KnownApplication{"code", "com.microsoft.VSCode", "Visual Studio Code"},
    KnownApplication{"com.visualstudio.code", "com.microsoft.VSCode", "Visual Studio Code"},
    KnownApplication{"obsidian", "md.obsidian", "Obsidian"},
    KnownApplication{"md.obsidian.obsidian", "md.obsidian", "Obsidian"},
    KnownApplication{"1password", "com.1password.1password", "1Password"},
    KnownApplication{"bitwarden", "com.bitwarden.desktop", "Bitwarden"},
    KnownApplication{"com.bitwarden.desktop", "com.bitwarden.desktop", "Bitwarden"},
    KnownApplication{"whatsapp-for-linux", "net.whatsapp.WhatsApp", "WhatsApp"},
    KnownApplication{"kovi", kMacHoldsMainAppBundleID, "Kovi"},
};

// The desktop's own parts: file managers, panels and docks, settings.
constexpr std::array<std::string_view, 27> kDesktopNames{
    "org.gnome.nautilus", "nautilus",    "nemo",           "caja",          "thunar",
    "pcmanfm",            "pcmanfm-qt",  "dolphin",        "xfdesktop",     "xfce4-panel",
    "lxpanel",            "lxqt-panel",  "mate-panel",     "gnome-panel",   "plasmashell",
    "tint2",              "polybar",     "gnome-control-center", "xfce4-settings-manager",
    "systemsettings",     "lxqt-config", "mate-control-center", "cinnamon-settings", "obconf",
    "org.kde.dolphin",    "org.kde.plasmashell", "org.kde.systemsettings",
};

std::string_view prefixOf(LinuxWindowSystem system) { return system == LinuxWindowSystem::x11 ? "x11:" : "wayland:"; }

std::string lowercase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

std::string prefixed(LinuxWindowSystem system, std::string_view name) {
  return std::string(prefixOf(system)) + std::string(name);
}

}  // namespace

LinuxApplicationIdentity linuxApplicationIdentity(LinuxWindowSystem system, std::initializer_list<std::string_view> names,
                                                  std::string_view shown) {
  for (std::string_view given : names) {
    if (given.empty()) continue;
    const std::string name = lowercase(given);
    for (const auto& known : kKnownApplications) {
      if (known.name == name) return {std::string(known.bundleIdentifier), std::string(known.displayName)};
    }
    for (std::string_view desktop : kDesktopNames) {
      if (desktop == name) return {prefixed(system, desktop), std::string(shown.empty() ? given : shown)};
    }
  }
  if (shown.empty()) return {};  // a window without a name names no application
  return {prefixed(system, shown), std::string(shown)};
}

const std::set<std::string>& linuxDesktopIdentifiers(LinuxWindowSystem system) {
  static const auto identifiersOf = [](LinuxWindowSystem of) {
    std::set<std::string> result;
    for (std::string_view desktop : kDesktopNames) result.insert(prefixed(of, desktop));
    return result;
  };
  static const std::set<std::string> x11 = identifiersOf(LinuxWindowSystem::x11);
  static const std::set<std::string> wayland = identifiersOf(LinuxWindowSystem::wayland);
  return system == LinuxWindowSystem::x11 ? x11 : wayland;
}

}  // namespace kovi::holds::desktop
