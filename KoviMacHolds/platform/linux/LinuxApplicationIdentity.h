#pragma once

#include <set>
#include <string>
#include <string_view>

namespace kovi::holds::desktop {

// Who a Linux application is, told from the names its windows carry (the
// WM_CLASS of an X11 window, the app_id of a Wayland toplevel).
struct LinuxApplicationIdentity {
  std::string bundleIdentifier;
  std::string displayName;
  bool operator==(const LinuxApplicationIdentity&) const = default;
};

// Where the names come from: the prefix of identifiers the table does not
// know ("x11:" or "wayland:"), so a plan never mistakes one for a Mac
// identifier.
enum class LinuxWindowSystem { x11, wayland };

// The identity of the application whose window carries `names` (tried in
// order; empty names are skipped). Applications that exist on Linux and on
// the Mac carry the Mac bundle identifier the focus presets use ("discord",
// "com.discordapp.Discord" → "com.hnc.Discord"), so a plan made for the Mac
// holds them on either window system. The desktop's own file manager, panel
// and settings are the prefix followed by their name in lower case; every
// other application is the prefix followed by `shown`, the name as the window
// gives it. Without any name there is no application to judge: the identity
// is empty.
LinuxApplicationIdentity linuxApplicationIdentity(LinuxWindowSystem system, std::initializer_list<std::string_view> names,
                                                  std::string_view shown);

// The identifiers of the desktop's own parts on `system`, which the guard
// always spares.
const std::set<std::string>& linuxDesktopIdentifiers(LinuxWindowSystem system);

}  // namespace kovi::holds::desktop
