#pragma once

#include <wayland-client.h>

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kovi::holds::wayland {

// One connection to the Wayland compositor and the globals it offers. Lives
// behind a unique_ptr: the registry listener points at it.
class WaylandDisplay {
 public:
  // Connects to $WAYLAND_DISPLAY and reads the globals; fails with a reason.
  static std::expected<std::unique_ptr<WaylandDisplay>, std::string> connect();
  ~WaylandDisplay();
  WaylandDisplay(const WaylandDisplay&) = delete;
  WaylandDisplay& operator=(const WaylandDisplay&) = delete;

  wl_display* get() const { return display_; }
  int fd() const { return wl_display_get_fd(display_); }
  std::set<std::string> globalInterfaces() const;

  // Binds the first global of `interface` at the highest version both sides
  // speak, at most `maximumVersion`; null when the compositor offers none.
  void* bind(const wl_interface& interface, std::uint32_t maximumVersion) const;
  template <class T>
  T* bind(const wl_interface& interface, std::uint32_t maximumVersion) const {
    return static_cast<T*>(bind(interface, maximumVersion));
  }
  // Binds every global of `interface` (each output, say) the same way.
  template <class T>
  std::vector<T*> bindAll(const wl_interface& interface, std::uint32_t maximumVersion) const {
    std::vector<T*> bound;
    for (const auto& global : globals_) {
      if (global.interface == interface.name) bound.push_back(static_cast<T*>(bindGlobal(global, interface, maximumVersion)));
    }
    return bound;
  }

  // Handles every event already read, then sends what is queued.
  void dispatchPending();
  // Waits until `condition` holds, handling the compositor's events as they
  // arrive, for at most `timeout`. False on time-out or a broken connection.
  bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout);
  // True while the connection has not failed with a protocol or I/O error.
  bool isAlive() const { return wl_display_get_error(display_) == 0; }

 private:
  struct Global {
    std::uint32_t name;
    std::string interface;
    std::uint32_t version;
  };
  explicit WaylandDisplay(wl_display* display) : display_(display) {}
  void* bindGlobal(const Global& global, const wl_interface& interface, std::uint32_t maximumVersion) const;
  static void handleGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                           std::uint32_t version);
  static void handleGlobalRemove(void* data, wl_registry* registry, std::uint32_t name);

  wl_display* display_;
  wl_registry* registry_ = nullptr;
  std::vector<Global> globals_;
};

}  // namespace kovi::holds::wayland
