#pragma once

#include <expected>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/wayland/demo/DesktopUser.h"
#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"

// A throwaway KDE Plasma desktop, kwin_wayland on a virtual framebuffer, and
// the programs started on it, for the Plasma desktop tests.
namespace kovi::holds::wayland {

using x11::ChildProcess;

class PrivateKWin {
 public:
  // Why this machine cannot run the desktop (kwin_wayland missing),
  // or nothing when it can.
  static std::optional<std::string> unavailableReason();
  // Starts KWin with `desktopEntries` installed as .desktop files under a
  // data directory of its own: KWin reads them to decide which programs get
  // its restricted interfaces. Fails with the reason and KWin's log.
  static std::expected<PrivateKWin, std::string> start(const std::filesystem::path& scratch,
                                                       const std::vector<std::string>& desktopEntries);

  PrivateKWin(PrivateKWin&&) = default;
  PrivateKWin& operator=(PrivateKWin&&) = delete;
  ~PrivateKWin() = default;

  // The environment that puts a program on this desktop, a Plasma session.
  std::map<std::string, std::string> environment() const;
  std::expected<ChildProcess, std::string> startProgram(const std::vector<std::string>& arguments,
                                                        const std::map<std::string, std::string>& extraEnvironment = {},
                                                        const std::optional<std::filesystem::path>& errors = {}) const;
  // A plain window carrying `appId`, standing in for that application.
  std::expected<ChildProcess, std::string> startStandIn(const std::string& appId) const;

  static constexpr int width = 1280;
  static constexpr int height = 800;

 private:
  PrivateKWin(std::filesystem::path scratch, DesktopUser user, ChildProcess kwin);

  std::filesystem::path scratch_;
  DesktopUser user_;
  std::optional<ChildProcess> kwin_;
};

}  // namespace kovi::holds::wayland
