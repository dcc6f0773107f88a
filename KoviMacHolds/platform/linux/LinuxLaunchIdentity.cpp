#include "KoviMacHolds/platform/linux/LinuxLaunchIdentity.h"

#include <sys/stat.h>

#include <system_error>

namespace kovi::holds::desktop {

LinuxLaunchIdentity::LinuxLaunchIdentity() {
  std::error_code error;
  executable_ = std::filesystem::read_symlink("/proc/self/exe", error);
}

std::optional<MacFileIdentity> LinuxLaunchIdentity::executableIdentity() {
  struct stat status {};
  if (executable_.empty() || stat(executable_.c_str(), &status) != 0) return std::nullopt;
  return MacFileIdentity{status.st_dev, status.st_ino};
}

}  // namespace kovi::holds::desktop
