#pragma once

#include <X11/Xlib.h>

#include <chrono>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kovi::holds::x11 {

// The atoms the agent reads and writes, interned once per connection.
struct X11Atoms {
  Atom netActiveWindow;
  Atom netClientList;
  Atom netWmPid;
  Atom netWmName;
  Atom netWmWindowType;
  Atom netWmWindowTypeDialog;
  Atom netWmWindowTypeDock;
  Atom netWmWindowTypeDesktop;
  Atom netWmState;
  Atom netWmStateAbove;
  Atom netWmStateSkipTaskbar;
  Atom netWmStateSkipPager;
  Atom wmState;
  Atom wmChangeState;
  Atom wmProtocols;
  Atom wmDeleteWindow;
  Atom utf8String;
};

// WM_CLASS: the instance name and the class name ("discord", "Discord").
struct X11WindowClass {
  std::string instance;
  std::string className;
  bool operator==(const X11WindowClass&) const = default;
};

// One connection to the X server, with the helpers for reading the
// properties the agent cares about. Errors about windows that vanished
// between two requests (BadWindow, BadMatch, BadDrawable) are expected on a
// live desktop and ignored; nothing else is sent to the default handler.
class X11Display {
 public:
  // Connects to $DISPLAY (or `name`); fails with a reason naming the display.
  static std::expected<X11Display, std::string> open(const char* name = nullptr);

  X11Display(X11Display&& other) noexcept;
  X11Display& operator=(X11Display&&) = delete;
  X11Display(const X11Display&) = delete;
  ~X11Display();

  Display* get() const { return display_; }
  Window root() const { return DefaultRootWindow(display_); }
  int screen() const { return DefaultScreen(display_); }
  int fd() const { return ConnectionNumber(display_); }
  const X11Atoms& atoms() const { return atoms_; }

  std::optional<Window> windowProperty(Window window, Atom property) const;
  std::vector<Window> windowListProperty(Window window, Atom property) const;
  std::optional<long> cardinalProperty(Window window, Atom property) const;
  std::vector<Atom> atomListProperty(Window window, Atom property) const;
  std::optional<X11WindowClass> windowClass(Window window) const;
  // The window's WM_STATE state (WithdrawnState, NormalState, IconicState).
  std::optional<long> wmState(Window window) const;

  // Waits until the window manager has done what was asked: re-checks
  // `condition` whenever data arrives from the server (and every couple of
  // milliseconds, as replies already read sit in Xlib's queue), up to
  // `timeout`. Events stay queued for the run loop.
  bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds timeout) const;

  // Sends an EWMH client message to the root window, as pagers and window
  // managers expect.
  void sendRootMessage(Window window, Atom type, long data0, long data1 = 0, long data2 = 0) const;

 private:
  explicit X11Display(Display* display);
  Display* display_;
  X11Atoms atoms_;
};

}  // namespace kovi::holds::x11
