#include "KoviMacHolds/platform/x11/X11RunLoop.h"

#include <poll.h>

namespace kovi::holds::x11 {

void X11RunLoop::dispatchPending() {
  // Handlers make round trips that read further events into Xlib's queue;
  // poll() would not see those, so the queue is drained before every sleep.
  while (!hasExited() && XPending(display_.get()) > 0) {
    XEvent event;
    XNextEvent(display_.get(), &event);
    for (const auto& handler : eventHandlers_) {
      if (hasExited()) return;
      handler(event);
    }
  }
}

bool X11RunLoop::connectionWoke(short revents) {
  // What arrived is read by the next dispatchPending.
  return (revents & (POLLERR | POLLHUP)) == 0;
}

}  // namespace kovi::holds::x11
