#pragma once

#include <X11/Xlib.h>

#include <functional>
#include <vector>

#include "KoviMacHolds/platform/linux/LinuxRunLoop.h"
#include "KoviMacHolds/platform/x11/X11Display.h"

namespace kovi::holds::x11 {

// The agent's loop on an X11 desktop: the Linux loop over the X connection,
// handing every X event to the handlers the workspace and the shield add.
class X11RunLoop final : public desktop::LinuxRunLoop {
 public:
  using EventHandler = std::function<void(const XEvent&)>;

  explicit X11RunLoop(X11Display& display) : LinuxRunLoop(display.fd()), display_(display) {}

  // Every X event goes to every handler, in the order they were added.
  void addEventHandler(EventHandler handler) { eventHandlers_.push_back(std::move(handler)); }

 protected:
  void dispatchPending() override;
  bool connectionWoke(short revents) override;

 private:
  X11Display& display_;
  std::vector<EventHandler> eventHandlers_;
};

}  // namespace kovi::holds::x11
