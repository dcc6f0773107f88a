#pragma once

#include <sys/types.h>

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// The user a throwaway Wayland desktop runs as. Wayland compositors refuse
// to run as root (sway) or drop what root would give them, so a root caller
// gets a system user of its own ("kovi-desktop", made when missing) and runs
// the compositor and every program on it as that user.
namespace kovi::holds::wayland {

using DesktopUser = std::optional<std::pair<uid_t, gid_t>>;

// The user to run the desktop as: none for a caller that is not root.
std::expected<DesktopUser, std::string> desktopUserForCaller();
// Hands `scratch` and everything in it to `user`.
std::expected<void, std::string> handOver(const std::filesystem::path& scratch, const DesktopUser& user);
// `arguments` run as `user`.
std::vector<std::string> runAs(const DesktopUser& user, std::vector<std::string> arguments);
// `program` is in one of the system's program directories.
bool isInstalled(const char* program);

}  // namespace kovi::holds::wayland
