#pragma once

#include <optional>
#include <set>
#include <string>

#include "KoviMacHolds/platform/x11/X11Display.h"

namespace kovi::holds::x11 {

// Who an X11 application is, told from the WM_CLASS of its windows.
struct X11ApplicationIdentity {
  std::string bundleIdentifier;
  std::string displayName;
  bool operator==(const X11ApplicationIdentity&) const = default;
};

// The identity of the application behind a window of `windowClass`:
// applications that exist on Linux and on the Mac carry the Mac bundle
// identifier the focus presets use ("discord" → "com.hnc.Discord"), so a
// plan made for the Mac holds them here too. The desktop's own file manager,
// panel and settings are "x11:" followed by their class in lower case; every
// other application is "x11:" followed by its class as the window gives it.
// A window without a class gets an empty identity: it is no application the
// guard can judge.
X11ApplicationIdentity x11ApplicationIdentity(const X11WindowClass& windowClass);

// The identifiers of the desktop's own parts (file managers, panels, settings),
// which the guard always spares.
const std::set<std::string>& x11DesktopIdentifiers();

}  // namespace kovi::holds::x11
