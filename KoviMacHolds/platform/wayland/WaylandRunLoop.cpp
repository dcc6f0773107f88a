#include "KoviMacHolds/platform/wayland/WaylandRunLoop.h"

#include <poll.h>

namespace kovi::holds::wayland {

WaylandRunLoop::~WaylandRunLoop() {
  if (readPrepared_) wl_display_cancel_read(display_.get());
}

void WaylandRunLoop::dispatchPending() {
  if (readPrepared_) {  // a poll() that was interrupted
    wl_display_cancel_read(display_.get());
    readPrepared_ = false;
  }
  // Whatever the idle handlers' round trips read is handled, and acted on,
  // before the loop sleeps.
  while (true) {
    display_.dispatchPending();
    for (const auto& handler : idleHandlers_) {
      if (hasExited()) return;
      handler();
    }
    if (hasExited()) return;
    if (wl_display_prepare_read(display_.get()) == 0) break;
  }
  readPrepared_ = true;
  wl_display_flush(display_.get());
}

bool WaylandRunLoop::connectionWoke(short revents) {
  if (readPrepared_) {
    readPrepared_ = false;
    if (revents & POLLIN) {
      if (wl_display_read_events(display_.get()) < 0) return false;
    } else {
      wl_display_cancel_read(display_.get());
    }
  }
  return (revents & (POLLERR | POLLHUP)) == 0 && display_.isAlive();
}

}  // namespace kovi::holds::wayland
