#include "KoviMacHolds/platform/wayland/WaylandDisplay.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace kovi::holds::wayland {


std::expected<std::unique_ptr<WaylandDisplay>, std::string> WaylandDisplay::connect() {
  wl_display* display = wl_display_connect(nullptr);
  if (display == nullptr) {
    const char* name = std::getenv("WAYLAND_DISPLAY");
    return std::unexpected("cannot connect to the Wayland display " + std::string(name != nullptr ? name : "wayland-0") +
                           ": " + std::strerror(errno));
  }
  std::unique_ptr<WaylandDisplay> connection(new WaylandDisplay(display));
  static const wl_registry_listener listener = {&WaylandDisplay::handleGlobal, &WaylandDisplay::handleGlobalRemove};
  connection->registry_ = wl_display_get_registry(display);
  wl_registry_add_listener(connection->registry_, &listener, connection.get());
  if (wl_display_roundtrip(display) < 0) return std::unexpected(std::string("the Wayland compositor closed the connection"));
  return connection;
}

WaylandDisplay::~WaylandDisplay() {
  if (registry_ != nullptr) wl_registry_destroy(registry_);
  wl_display_disconnect(display_);
}

void WaylandDisplay::handleGlobal(void* data, wl_registry*, std::uint32_t name, const char* interface,
                                  std::uint32_t version) {
  static_cast<WaylandDisplay*>(data)->globals_.push_back({name, interface, version});
}

void WaylandDisplay::handleGlobalRemove(void* data, wl_registry*, std::uint32_t name) {
  std::erase_if(static_cast<WaylandDisplay*>(data)->globals_, [name](const Global& global) { return global.name == name; });
}

std::set<std::string> WaylandDisplay::globalInterfaces() const {
  std::set<std::string> result;
  for (const auto& global : globals_) result.insert(global.interface);
  return result;
}

void* WaylandDisplay::bind(const wl_interface& interface, std::uint32_t maximumVersion) const {
  for (const auto& global : globals_) {
    if (global.interface == interface.name) return bindGlobal(global, interface, maximumVersion);
  }
  return nullptr;
}

void* WaylandDisplay::bindGlobal(const Global& global, const wl_interface& interface, std::uint32_t maximumVersion) const {
  const std::uint32_t version = std::min({global.version, maximumVersion, static_cast<std::uint32_t>(interface.version)});
  return wl_registry_bind(registry_, global.name, &interface, version);
}

void WaylandDisplay::dispatchPending() {
  wl_display_dispatch_pending(display_);
  wl_display_flush(display_);
}

bool WaylandDisplay::waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    dispatchPending();
    if (condition()) return true;
    if (!isAlive()) return false;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left <= std::chrono::milliseconds::zero()) return false;
    while (wl_display_prepare_read(display_) != 0) wl_display_dispatch_pending(display_);
    wl_display_flush(display_);
    pollfd fd{wl_display_get_fd(display_), POLLIN, 0};
    const int ready = poll(&fd, 1, static_cast<int>(left.count()) + 1);
    if (ready > 0 && (fd.revents & POLLIN)) {
      if (wl_display_read_events(display_) < 0) return false;
    } else {
      wl_display_cancel_read(display_);
      if (ready > 0 && (fd.revents & (POLLERR | POLLHUP))) return false;
    }
  }
}

}  // namespace kovi::holds::wayland
