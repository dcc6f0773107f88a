#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace kovi::tool {

// Input idle time from the XScreenSaver extension and display power from
// DPMS, on the X display in $DISPLAY.
class X11IdleSource {
 public:
  // Nothing when no X display can be opened or it lacks the screen-saver extension.
  static std::unique_ptr<X11IdleSource> open();
  ~X11IdleSource();
  X11IdleSource(const X11IdleSource&) = delete;
  X11IdleSource& operator=(const X11IdleSource&) = delete;

  std::optional<std::int64_t> inputIdleMS();
  // A display without power management never powers down while X runs.
  bool displayAwake();

 private:
  struct Handles;
  explicit X11IdleSource(std::unique_ptr<Handles> handles);
  std::unique_ptr<Handles> handles_;
};

}  // namespace kovi::tool
