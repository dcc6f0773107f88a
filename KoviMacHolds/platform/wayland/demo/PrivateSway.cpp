#include "KoviMacHolds/platform/wayland/demo/PrivateSway.h"

#include <cairo.h>

#include <cstdio>
#include <cstring>

#include <nlohmann/json.hpp>

#include "KoviMacHolds/platform/wayland/SwayIpc.h"
#include "KoviMacHolds/platform/wayland/demo/DesktopUser.h"

namespace kovi::holds::wayland {

namespace {

constexpr std::chrono::milliseconds kStartTime{15000};
constexpr std::chrono::milliseconds kToolTime{10000};
constexpr std::chrono::milliseconds kIpcTime{2000};

std::optional<std::filesystem::path> firstMatching(const std::filesystem::path& directory, std::string_view prefix,
                                                   std::string_view suffix) {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with(prefix) && name.ends_with(suffix)) return entry.path();
  }
  return std::nullopt;
}

std::expected<void, std::string> runToEnd(std::expected<ChildProcess, std::string> process, const std::string& what) {
  if (!process) return std::unexpected(what + ": " + process.error());
  const auto status = process->waitForExit(kToolTime);
  if (status != 0) return std::unexpected(what + " failed (status " + (status ? std::to_string(*status) : "none") + ")");
  return {};
}

}  // namespace

bool PrivateSway::isAvailable() {
  return isInstalled("sway") && isInstalled("foot") && isInstalled("grim") && isInstalled("wtype");
}

std::expected<PrivateSway, std::string> PrivateSway::start(const std::filesystem::path& scratch) {
  const auto user = desktopUserForCaller();
  if (!user) return std::unexpected(user.error());
  const auto runtime = scratch / "runtime";
  std::filesystem::create_directories(runtime);
  std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
  const auto config = scratch / "sway.conf";
  {
    std::FILE* file = std::fopen(config.c_str(), "w");
    if (file == nullptr) return std::unexpected("cannot write " + config.string());
    std::fprintf(file, "output HEADLESS-1 resolution %dx%d position 0 0\ndefault_border none\n", width, height);
    std::fclose(file);
  }
  if (auto handed = handOver(scratch, *user); !handed) return std::unexpected(handed.error());
  auto sway = ChildProcess::start(runAs(*user, {"sway", "-c", config.string()}),
                                  {{"XDG_RUNTIME_DIR", runtime.string()},
                                   {"HOME", scratch.string()},
                                   {"WLR_BACKENDS", "headless"},
                                   {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                   {"WLR_RENDERER", "pixman"},
                                   {"WAYLAND_DISPLAY", ""},
                                   {"DISPLAY", ""}},
                                  std::nullopt, scratch / "sway.log");
  if (!sway) return std::unexpected("sway: " + sway.error());
  std::optional<std::filesystem::path> socket;
  const bool started = x11::waitUntil(
      [&] {
        socket = firstMatching(runtime, "sway-ipc.", ".sock");
        return socket && firstMatching(runtime, "wayland-", "") && swayRequest(*socket, SwayMessageType::getTree, "", kIpcTime);
      },
      kStartTime);
  if (!started) return std::unexpected("sway did not start; see " + (scratch / "sway.log").string());
  return PrivateSway(scratch, *user, std::move(*sway), *socket);
}

PrivateSway::PrivateSway(std::filesystem::path scratch, std::optional<std::pair<uid_t, gid_t>> user, ChildProcess sway,
                         std::filesystem::path socket)
    : scratch_(std::move(scratch)), user_(user), sway_(std::move(sway)), socket_(std::move(socket)) {}

std::map<std::string, std::string> PrivateSway::environment() const {
  const auto runtime = scratch_ / "runtime";
  const auto display = firstMatching(runtime, "wayland-", "");
  std::string name = display ? display->filename().string() : "wayland-1";
  if (name.ends_with(".lock")) name.resize(name.size() - 5);
  return {{"XDG_RUNTIME_DIR", runtime.string()},
          {"WAYLAND_DISPLAY", name},
          {"SWAYSOCK", socket_.string()},
          {"XDG_CURRENT_DESKTOP", "sway"},
          {"HOME", scratch_.string()},
          {"DISPLAY", ""}};
}

std::expected<ChildProcess, std::string> PrivateSway::startProgram(const std::vector<std::string>& arguments,
                                                                   const std::map<std::string, std::string>& extraEnvironment,
                                                                   const std::optional<std::filesystem::path>& output,
                                                                   const std::optional<std::filesystem::path>& errors) const {
  auto environment = this->environment();
  for (const auto& [name, value] : extraEnvironment) environment[name] = value;
  return ChildProcess::start(runAs(user_, arguments), environment, output, errors);
}

std::expected<ChildProcess, std::string> PrivateSway::startStandIn(const std::string& appId) const {
  // The terminal runs a program that never ends, so it stays open.
  return startProgram({"foot", "--app-id=" + appId, "sleep", "infinity"}, {}, std::nullopt,
                      scratch_ / (appId + ".log"));
}

std::vector<SwayWindow> PrivateSway::windows() const {
  std::vector<SwayWindow> result;
  const auto tree = swayRequest(socket_, SwayMessageType::getTree, "", kIpcTime);
  if (!tree) return result;
  const auto document = nlohmann::json::parse(*tree, nullptr, false);
  if (document.is_discarded()) return result;
  std::vector<std::pair<const nlohmann::json*, bool>> pending{{&document, false}};
  while (!pending.empty()) {
    const auto [node, parentInScratchpad] = pending.back();
    pending.pop_back();
    const bool inScratchpad = parentInScratchpad || node->value("name", "") == "__i3_scratch";
    if (node->contains("app_id") && (*node)["app_id"].is_string()) {
      result.push_back({node->value("id", std::int64_t{0}), (*node)["app_id"].get<std::string>(), inScratchpad,
                        node->value("focused", false)});
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
      if (node->contains(children)) {
        for (const auto& child : (*node)[children]) pending.push_back({&child, inScratchpad});
      }
    }
  }
  return result;
}

std::optional<SwayWindow> PrivateSway::window(const std::string& appId) const {
  for (auto& window : windows()) {
    if (window.appId == appId) return window;
  }
  return std::nullopt;
}

std::expected<std::string, std::string> PrivateSway::command(const std::string& text) const {
  auto reply = swayRequest(socket_, SwayMessageType::runCommand, text, kIpcTime);
  if (!reply) return reply;
  if (auto checked = checkSwayCommandReply(*reply); !checked) return std::unexpected(checked.error());
  return reply;
}

std::expected<void, std::string> PrivateSway::screenshot(const std::filesystem::path& file) const {
  return runToEnd(startProgram({"grim", file.string()}), "grim");
}

std::expected<SwayColor, std::string> PrivateSway::colorAt(int x, int y) const {
  const auto file = scratch_ / "screen.png";
  if (auto saved = screenshot(file); !saved) return std::unexpected(saved.error());
  cairo_surface_t* image = cairo_image_surface_create_from_png(file.c_str());
  if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(image);
    return std::unexpected("cannot read " + file.string());
  }
  cairo_surface_flush(image);
  const int stride = cairo_image_surface_get_stride(image);
  if (x < 0 || y < 0 || x >= cairo_image_surface_get_width(image) || y >= cairo_image_surface_get_height(image)) {
    cairo_surface_destroy(image);
    return std::unexpected("the point is outside the screen");
  }
  const unsigned char* row = cairo_image_surface_get_data(image) + static_cast<std::ptrdiff_t>(y) * stride;
  std::uint32_t pixel = 0;
  std::memcpy(&pixel, row + static_cast<std::ptrdiff_t>(x) * 4, sizeof pixel);
  cairo_surface_destroy(image);
  return SwayColor{static_cast<int>((pixel >> 16) & 0xff), static_cast<int>((pixel >> 8) & 0xff),
                   static_cast<int>(pixel & 0xff)};
}

std::expected<void, std::string> PrivateSway::click(int x, int y) const {
  return runToEnd(startProgram({KOVI_WAYLAND_CLICK, std::to_string(x), std::to_string(y), std::to_string(width),
                                std::to_string(height)}),
                  "kovi-wayland-click");
}

std::expected<void, std::string> PrivateSway::pressKey(const std::string& key) const {
  return runToEnd(startProgram({"wtype", "-s", "400", "-k", key}), "wtype");
}

}  // namespace kovi::holds::wayland
