#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"

// A throwaway Wayland desktop, headless sway, and the programs started on it,
// for the desktop tests, the demo and the latency benchmark.
namespace kovi::holds::wayland {

using x11::ChildProcess;

// One window as sway's tree shows it.
struct SwayWindow {
  std::int64_t id = 0;
  std::string appId;
  bool inScratchpad = false;
  bool focused = false;
};

struct SwayColor {
  int red = 0;
  int green = 0;
  int blue = 0;
  bool operator==(const SwayColor&) const = default;
};

class PrivateSway {
 public:
  // sway refuses to run as root: a root caller gets the desktop run by a
  // system user of its own ("kovi-desktop", made when missing), and every
  // program on it runs as that user. `scratch` is handed to that user.
  static std::expected<PrivateSway, std::string> start(const std::filesystem::path& scratch);
  // sway, foot and grim are installed.
  static bool isAvailable();

  PrivateSway(PrivateSway&&) = default;
  PrivateSway& operator=(PrivateSway&&) = delete;
  ~PrivateSway() = default;

  // The environment that puts a program on this desktop.
  std::map<std::string, std::string> environment() const;
  // Starts a program on the desktop as the desktop's user.
  std::expected<ChildProcess, std::string> startProgram(const std::vector<std::string>& arguments,
                                                        const std::map<std::string, std::string>& extraEnvironment = {},
                                                        const std::optional<std::filesystem::path>& output = {},
                                                        const std::optional<std::filesystem::path>& errors = {}) const;
  // A terminal whose toplevel carries `appId`, standing in for that application.
  std::expected<ChildProcess, std::string> startStandIn(const std::string& appId) const;

  std::vector<SwayWindow> windows() const;
  std::optional<SwayWindow> window(const std::string& appId) const;
  // Runs a sway command ("[app_id=discord] focus"); the reply or why it failed.
  std::expected<std::string, std::string> command(const std::string& text) const;
  // Saves the whole output with grim and reads the colour at a point of it.
  std::expected<SwayColor, std::string> colorAt(int x, int y) const;
  std::expected<void, std::string> screenshot(const std::filesystem::path& file) const;
  // Clicks the primary button at a point of the output with a virtual pointer.
  std::expected<void, std::string> click(int x, int y) const;
  // Types a key ("Return") on a virtual keyboard (wtype), after giving the
  // desktop's clients time to take up the new keyboard.
  std::expected<void, std::string> pressKey(const std::string& key) const;

  const std::filesystem::path& socket() const { return socket_; }
  static constexpr int width = 1280;
  static constexpr int height = 800;

 private:
  PrivateSway(std::filesystem::path scratch, std::optional<std::pair<uid_t, gid_t>> user, ChildProcess sway,
              std::filesystem::path socket);

  std::filesystem::path scratch_;
  std::optional<std::pair<uid_t, gid_t>> user_;
  std::optional<ChildProcess> sway_;
  std::filesystem::path socket_;
};

}  // namespace kovi::holds::wayland
