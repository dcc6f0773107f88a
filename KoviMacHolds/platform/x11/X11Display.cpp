#include "KoviMacHolds/platform/x11/X11Display.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <poll.h>

#include <algorithm>
#include <cstring>

namespace kovi::holds::x11 {

namespace {

int ignoreVanishedWindows(Display* display, XErrorEvent* error) {
  if (error->error_code == BadWindow || error->error_code == BadMatch || error->error_code == BadDrawable) return 0;
  char text[256];
  XGetErrorText(display, error->error_code, text, sizeof text);
  std::fprintf(stderr, "X error: %s (request %d)\n", text, error->request_code);
  return 0;
}

// The raw bytes of a property of `type` and 32-bit `format`, as longs.
std::vector<unsigned long> longProperty(Display* display, Window window, Atom property, Atom type) {
  Atom actualType = None;
  int actualFormat = 0;
  unsigned long count = 0;
  unsigned long remaining = 0;
  unsigned char* data = nullptr;
  std::vector<unsigned long> values;
  if (XGetWindowProperty(display, window, property, 0, 4096, False, type, &actualType, &actualFormat, &count,
                         &remaining, &data) == Success &&
      data != nullptr) {
    if (actualType == type && actualFormat == 32) {
      const auto* longs = reinterpret_cast<const unsigned long*>(data);
      values.assign(longs, longs + count);
    }
  }
  if (data != nullptr) XFree(data);
  return values;
}

}  // namespace

std::expected<X11Display, std::string> X11Display::open(const char* name) {
  Display* display = XOpenDisplay(name);
  if (display == nullptr) {
    const char* shown = name ? name : std::getenv("DISPLAY");
    return std::unexpected(std::string("cannot open the X display \"") + (shown ? shown : "") + "\"");
  }
  XSetErrorHandler(ignoreVanishedWindows);
  return X11Display(display);
}

X11Display::X11Display(Display* display) : display_(display) {
  const char* names[] = {
      "_NET_ACTIVE_WINDOW",        "_NET_CLIENT_LIST",          "_NET_WM_PID",
      "_NET_WM_NAME",              "_NET_WM_WINDOW_TYPE",       "_NET_WM_WINDOW_TYPE_DIALOG",
      "_NET_WM_WINDOW_TYPE_DOCK",  "_NET_WM_WINDOW_TYPE_DESKTOP", "_NET_WM_STATE",
      "_NET_WM_STATE_ABOVE",       "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER",
      "WM_STATE",                  "WM_CHANGE_STATE",           "WM_PROTOCOLS",
      "WM_DELETE_WINDOW",          "UTF8_STRING",
  };
  static_assert(sizeof names / sizeof names[0] == sizeof(X11Atoms) / sizeof(Atom));
  Atom atoms[sizeof names / sizeof names[0]];
  XInternAtoms(display_, const_cast<char**>(names), sizeof names / sizeof names[0], False, atoms);
  std::memcpy(&atoms_, atoms, sizeof atoms_);
}

X11Display::X11Display(X11Display&& other) noexcept : display_(other.display_), atoms_(other.atoms_) {
  other.display_ = nullptr;
}

X11Display::~X11Display() {
  if (display_ != nullptr) XCloseDisplay(display_);
}

std::optional<Window> X11Display::windowProperty(Window window, Atom property) const {
  const auto values = longProperty(display_, window, property, XA_WINDOW);
  if (values.empty() || values.front() == None) return std::nullopt;
  return static_cast<Window>(values.front());
}

std::vector<Window> X11Display::windowListProperty(Window window, Atom property) const {
  const auto values = longProperty(display_, window, property, XA_WINDOW);
  return {values.begin(), values.end()};
}

std::optional<long> X11Display::cardinalProperty(Window window, Atom property) const {
  const auto values = longProperty(display_, window, property, XA_CARDINAL);
  if (values.empty()) return std::nullopt;
  return static_cast<long>(values.front());
}

std::vector<Atom> X11Display::atomListProperty(Window window, Atom property) const {
  const auto values = longProperty(display_, window, property, XA_ATOM);
  return {values.begin(), values.end()};
}

std::optional<X11WindowClass> X11Display::windowClass(Window window) const {
  XClassHint hint{};
  if (XGetClassHint(display_, window, &hint) == 0) return std::nullopt;
  X11WindowClass result{hint.res_name ? hint.res_name : "", hint.res_class ? hint.res_class : ""};
  if (hint.res_name) XFree(hint.res_name);
  if (hint.res_class) XFree(hint.res_class);
  return result;
}

std::optional<long> X11Display::wmState(Window window) const {
  const auto values = longProperty(display_, window, atoms_.wmState, atoms_.wmState);
  if (values.empty()) return std::nullopt;
  return static_cast<long>(values.front());
}

bool X11Display::waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout) const {
  constexpr std::chrono::milliseconds recheck{2};
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!condition()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd descriptor{fd(), POLLIN, 0};
    poll(&descriptor, 1, static_cast<int>(std::min(left, recheck).count()));
  }
  return true;
}

void X11Display::sendRootMessage(Window window, Atom type, long data0, long data1, long data2) const {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = type;
  event.xclient.format = 32;
  event.xclient.data.l[0] = data0;
  event.xclient.data.l[1] = data1;
  event.xclient.data.l[2] = data2;
  XSendEvent(display_, root(), False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

}  // namespace kovi::holds::x11
