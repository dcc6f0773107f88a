#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace kovi::holds {

// How an application takes part in the desktop. Only regular applications
// (the ones with windows in the task bar or Dock) are ever held; background
// helpers and accessory applications such as panels are left alone.
enum class MacActivationPolicy { regular, accessory, prohibited };

// One running application as the workspace reports it.
struct MacRunningApplication {
  pid_t processIdentifier = 0;
  // Reverse-DNS identifier ("com.hnc.Discord"); absent when the platform
  // cannot tell which application this is.
  std::optional<std::string> bundleIdentifier;
  // The name people know the application by ("Discord").
  std::string localizedName;
  MacActivationPolicy activationPolicy = MacActivationPolicy::regular;
  bool isTerminated = false;

  bool operator==(const MacRunningApplication&) const = default;
};

}  // namespace kovi::holds
