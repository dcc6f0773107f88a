#pragma once

#include <filesystem>

#include "KoviMacHolds/platform/MacLaunchIdentity.h"

namespace kovi::holds::desktop {

// The identity of the agent's executable on Linux. The path is resolved once,
// from /proc/self/exe, when the agent starts: after an update has replaced the
// file, /proc/self/exe still names the old inode, so only the path shows the
// change.
class LinuxLaunchIdentity final : public MacLaunchIdentity {
 public:
  LinuxLaunchIdentity();
  std::optional<MacFileIdentity> executableIdentity() override;

 private:
  std::filesystem::path executable_;
};

}  // namespace kovi::holds::desktop
