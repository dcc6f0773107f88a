#include "KoviMacHolds/platform/x11/X11ApplicationIdentity.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds::x11 {

namespace {

struct KnownApplication {
  std::string_view windowClass;  // WM_CLASS class or instance, lower case
  std::string_view bundleIdentifier;
  std::string_view displayName;
};

// Applications that ship for Linux under the Mac identifiers the presets name.
constexpr std::array kKnownApplications{
    KnownApplication{"discord", "com.hnc.Discord", "Discord"},
    KnownApplication{"telegramdesktop", "org.telegram.desktop", "Telegram"},
    KnownApplication{"telegram-desktop", "org.telegram.desktop", "Telegram"},
    KnownApplication{"steam", "com.valvesoftware.steam", "Steam"},
    KnownApplication{"spotify", "com.spotify.client", "Spotify"},
    KnownApplication{"firefox", "org.mozilla.firefox", "Firefox"},
    KnownApplication{"firefox-esr", "org.mozilla.firefox", "Firefox"},
    KnownApplication{"google-chrome", "com.google.Chrome", "Google Chrome"},
    KnownApplication{"brave-browser", "com.brave.Browser", "Brave Browser"},
    KnownApplication{"microsoft-edge", "com.microsoft.edgemac", "Microsoft Edge"},
    KnownApplication{"opera", "com.operasoftware.Opera", "Opera"},
    KnownApplication{"code", "com.microsoft.VSCode", "Visual Studio Code"},
    KnownApplication{"obsidian", "md.obsidian", "Obsidian"},
    KnownApplication{"1password", "com.1password.1password", "1Password"},
    KnownApplication{"bitwarden", "com.bitwarden.desktop", "Bitwarden"},
    KnownApplication{"whatsapp-for-linux", "net.whatsapp.WhatsApp", "WhatsApp"},
    KnownApplication{"kovi", kMacHoldsMainAppBundleID, "Kovi"},
};

// The desktop's own parts: file managers, panels and docks, settings.
constexpr std::array<std::string_view, 24> kDesktopClasses{
    "org.gnome.nautilus", "nautilus",    "nemo",           "caja",          "thunar",
    "pcmanfm",            "pcmanfm-qt",  "dolphin",        "xfdesktop",     "xfce4-panel",
    "lxpanel",            "lxqt-panel",  "mate-panel",     "gnome-panel",   "plasmashell",
    "tint2",              "polybar",     "gnome-control-center", "xfce4-settings-manager",
    "systemsettings",     "lxqt-config", "mate-control-center", "cinnamon-settings", "obconf",
};

std::string lowercase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return result;
}

std::string desktopIdentifier(std::string_view windowClass) { return "x11:" + std::string(windowClass); }

}  // namespace

X11ApplicationIdentity x11ApplicationIdentity(const X11WindowClass& windowClass) {
  const std::string className = lowercase(windowClass.className);
  const std::string instance = lowercase(windowClass.instance);
  for (const std::string& name : {className, instance}) {
    if (name.empty()) continue;
    for (const auto& known : kKnownApplications) {
      if (known.windowClass == name) return {std::string(known.bundleIdentifier), std::string(known.displayName)};
    }
    for (std::string_view desktop : kDesktopClasses) {
      if (desktop == name) return {desktopIdentifier(desktop), windowClass.className};
    }
  }
  const std::string& shown = windowClass.className.empty() ? windowClass.instance : windowClass.className;
  if (shown.empty()) return {};  // a window without WM_CLASS names no application
  return {"x11:" + shown, shown};
}

const std::set<std::string>& x11DesktopIdentifiers() {
  static const std::set<std::string> identifiers = [] {
    std::set<std::string> result;
    for (std::string_view desktop : kDesktopClasses) result.insert(desktopIdentifier(desktop));
    return result;
  }();
  return identifiers;
}

}  // namespace kovi::holds::x11
