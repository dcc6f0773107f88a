#include "KoviMacHolds/platform/wayland/demo/PrivateKWin.h"

#include <fstream>
#include <iterator>

namespace kovi::holds::wayland {

namespace {

constexpr const char* kSocket = "kovi-kwin";
constexpr std::chrono::milliseconds kStartTime{20000};

std::string readText(const std::filesystem::path& file) {
  std::ifstream in(file);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

}  // namespace

std::optional<std::string> PrivateKWin::unavailableReason() {
  if (!isInstalled("kwin_wayland")) {
    return "kwin_wayland is not installed (Debian package kwin-wayland), so KDE Plasma cannot be tested here";
  }
  return std::nullopt;
}

std::expected<PrivateKWin, std::string> PrivateKWin::start(const std::filesystem::path& scratch,
                                                           const std::vector<std::string>& desktopEntries) {
  const auto user = desktopUserForCaller();
  if (!user) return std::unexpected(user.error());
  const auto runtime = scratch / "runtime";
  std::filesystem::create_directories(runtime);
  std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
  const auto applications = scratch / "share" / "applications";
  std::filesystem::create_directories(applications);
  for (std::size_t index = 0; index < desktopEntries.size(); ++index) {
    std::ofstream(applications / ("kovi-test-" + std::to_string(index) + ".desktop")) << desktopEntries[index];
  }
  // Debian's kwin_wayland carries a file capability, which a container that
  // lacks it refuses to run the file with; a copy carries none.
  const auto kwin = scratch / "kwin_wayland";
  std::error_code copyError;
  std::filesystem::copy_file("/usr/bin/kwin_wayland", kwin, copyError);
  if (copyError) return std::unexpected("cannot copy kwin_wayland: " + copyError.message());
  if (auto handed = handOver(scratch, *user); !handed) return std::unexpected(handed.error());
  const auto log = scratch / "kwin.log";
  auto started = ChildProcess::start(
      runAs(*user, {kwin.string(), "--virtual", "--socket", kSocket, "--width", std::to_string(width), "--height",
                    std::to_string(height), "--no-lockscreen", "--no-global-shortcuts"}),
      {{"XDG_RUNTIME_DIR", runtime.string()},
       {"XDG_DATA_DIRS", (scratch / "share").string() + ":/usr/share"},
       {"HOME", scratch.string()},
       {"QT_QPA_PLATFORM", "wayland"},
       {"WAYLAND_DISPLAY", ""},
       {"DISPLAY", ""}},
      std::nullopt, log);
  if (!started) return std::unexpected("kwin_wayland: " + started.error());
  const bool up = x11::waitUntil([&] { return std::filesystem::exists(runtime / kSocket); }, kStartTime);
  if (!up || !started->isRunning()) return std::unexpected("kwin_wayland did not start:\n" + readText(log));
  return PrivateKWin(scratch, *user, std::move(*started));
}

PrivateKWin::PrivateKWin(std::filesystem::path scratch, DesktopUser user, ChildProcess kwin)
    : scratch_(std::move(scratch)), user_(user), kwin_(std::move(kwin)) {}

std::map<std::string, std::string> PrivateKWin::environment() const {
  return {{"XDG_RUNTIME_DIR", (scratch_ / "runtime").string()},
          {"WAYLAND_DISPLAY", kSocket},
          {"XDG_CURRENT_DESKTOP", "KDE"},
          {"HOME", scratch_.string()},
          {"SWAYSOCK", ""},
          {"DISPLAY", ""}};
}

std::expected<ChildProcess, std::string> PrivateKWin::startProgram(const std::vector<std::string>& arguments,
                                                                   const std::map<std::string, std::string>& extraEnvironment,
                                                                   const std::optional<std::filesystem::path>& errors) const {
  auto environment = this->environment();
  for (const auto& [name, value] : extraEnvironment) environment[name] = value;
  return ChildProcess::start(runAs(user_, arguments), environment, std::nullopt, errors);
}

std::expected<ChildProcess, std::string> PrivateKWin::startStandIn(const std::string& appId) const {
  return startProgram({KOVI_WAYLAND_WINDOW, appId}, {}, scratch_ / (appId + ".log"));
}

}  // namespace kovi::holds::wayland
