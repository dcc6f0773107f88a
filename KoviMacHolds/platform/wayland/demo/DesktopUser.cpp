#include "KoviMacHolds/platform/wayland/demo/DesktopUser.h"

#include <pwd.h>
#include <unistd.h>

#include <chrono>

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"

namespace kovi::holds::wayland {

namespace {

constexpr const char* kDesktopUser = "kovi-desktop";
constexpr std::chrono::milliseconds kUseraddTime{10000};

DesktopUser existingUser() {
  if (passwd* entry = getpwnam(kDesktopUser)) return std::pair{entry->pw_uid, entry->pw_gid};
  return std::nullopt;
}

}  // namespace

std::expected<DesktopUser, std::string> desktopUserForCaller() {
  if (geteuid() != 0) return DesktopUser{};
  if (auto user = existingUser()) return user;
  auto useradd =
      x11::ChildProcess::start({"useradd", "--system", "--no-create-home", "--shell", "/usr/sbin/nologin", kDesktopUser});
  if (useradd) useradd->waitForExit(kUseraddTime);
  // Another test may have made the user meanwhile: what counts is that it exists.
  if (auto user = existingUser()) return user;
  return std::unexpected(std::string("cannot make the user ") + kDesktopUser + " to run the desktop as");
}

std::expected<void, std::string> handOver(const std::filesystem::path& scratch, const DesktopUser& user) {
  if (!user) return {};
  for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch)) {
    if (chown(entry.path().c_str(), user->first, user->second) != 0) {
      return std::unexpected("cannot hand over " + entry.path().string());
    }
  }
  if (chown(scratch.c_str(), user->first, user->second) != 0) return std::unexpected("cannot hand over " + scratch.string());
  return {};
}

std::vector<std::string> runAs(const DesktopUser& user, std::vector<std::string> arguments) {
  if (!user) return arguments;
  std::vector<std::string> wrapped{"setpriv", "--reuid=" + std::to_string(user->first),
                                   "--regid=" + std::to_string(user->second), "--clear-groups"};
  wrapped.insert(wrapped.end(), arguments.begin(), arguments.end());
  return wrapped;
}

bool isInstalled(const char* program) {
  for (const char* directory : {"/usr/bin", "/bin", "/usr/local/bin"}) {
    if (access((std::filesystem::path(directory) / program).c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace kovi::holds::wayland
