// kovi-stand-in-app: a stand-in for a real application on an X11 desktop, for
// the demo and the desktop tests. It opens one ordinary top-level window with
// the WM_CLASS and _NET_WM_PID a real application would set, prints the
// window's id once the window manager has mapped it, and runs until closed
// or terminated.
//
//   kovi-stand-in-app --class discord --name Discord [--windows N]
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

int main(int argc, char** argv) {
  std::string instance = "stand-in";
  std::string className = "Stand-in";
  int windowCount = 1;
  for (int index = 1; index + 1 < argc; index += 2) {
    const std::string option = argv[index];
    if (option == "--class") instance = argv[index + 1];
    else if (option == "--name") className = argv[index + 1];
    else if (option == "--windows") windowCount = std::atoi(argv[index + 1]);
    else {
      std::fprintf(stderr, "usage: %s --class INSTANCE --name CLASS [--windows N]\n", argv[0]);
      return 2;
    }
  }
  Display* display = XOpenDisplay(nullptr);
  if (display == nullptr) {
    std::fprintf(stderr, "%s: cannot open the X display\n", argv[0]);
    return 1;
  }
  const Atom netWmPid = XInternAtom(display, "_NET_WM_PID", False);
  Atom deleteWindow = XInternAtom(display, "WM_DELETE_WINDOW", False);
  const long pid = getpid();

  std::vector<Window> windows;
  for (int index = 0; index < windowCount; ++index) {
    const Window window = XCreateSimpleWindow(display, DefaultRootWindow(display), 40 + 30 * index, 40 + 30 * index,
                                              420, 300, 0, 0, 0x5865f2);
    XClassHint hint{instance.data(), className.data()};
    XSetClassHint(display, window, &hint);
    const std::string title = className + (windowCount > 1 ? " " + std::to_string(index + 1) : "");
    XStoreName(display, window, title.c_str());
    XChangeProperty(display, window, netWmPid, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&pid), 1);
    XSetWMProtocols(display, window, &deleteWindow, 1);
    XSelectInput(display, window, ExposureMask | StructureNotifyMask);
    XMapWindow(display, window);
    windows.push_back(window);
  }

  std::size_t mapped = 0;
  for (;;) {
    XEvent event;
    XNextEvent(display, &event);
    if (event.type == MapNotify && ++mapped == windows.size()) {
      for (Window window : windows) std::printf("0x%lx\n", window);
      std::fflush(stdout);
    } else if (event.type == Expose && event.xexpose.count == 0) {
      const GC gc = DefaultGC(display, DefaultScreen(display));
      XSetForeground(display, gc, 0xffffff);
      XDrawString(display, event.xexpose.window, gc, 20, 30, className.c_str(), static_cast<int>(className.size()));
    } else if (event.type == ClientMessage && static_cast<Atom>(event.xclient.data.l[0]) == deleteWindow) {
      break;
    }
  }
  XCloseDisplay(display);
  return 0;
}
