#pragma once

#include <string_view>

namespace kovi::holds {

// The main Kovi app's bundle identifier, and the agent's own: the main app's
// followed by ".holds".
inline constexpr std::string_view kMacHoldsMainAppBundleID = "app.kovi.app.mac";
inline constexpr std::string_view kMacHoldsAgentBundleID = "app.kovi.app.mac.holds";

// Always spared whatever the plan says: the file manager and the system
// settings (the desktop's own parts are added by the platform), the main app
// and the agent itself.
inline constexpr std::string_view kMacHoldsFinderBundleID = "com.apple.finder";
inline constexpr std::string_view kMacHoldsSystemSettingsBundleID = "com.apple.systempreferences";

// Exit statuses: 0 when nothing is left to hold or another copy runs; 75 when
// the executable was replaced, which asks the service manager for a restart.
inline constexpr int kMacHoldsExitDone = 0;
inline constexpr int kMacHoldsExitReplaced = 75;

}  // namespace kovi::holds
