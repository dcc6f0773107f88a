#pragma once

#include "KoviMacHolds/platform/linux/LinuxApplicationIdentity.h"
#include "KoviMacHolds/platform/x11/X11Display.h"

namespace kovi::holds::x11 {

// The identity of the application behind a window of `windowClass`: its
// class, then its instance, looked up in the Linux application table; an
// unknown application is "x11:" followed by its class as the window gives it
// (the instance when there is no class).
inline desktop::LinuxApplicationIdentity x11ApplicationIdentity(const X11WindowClass& windowClass) {
  return desktop::linuxApplicationIdentity(desktop::LinuxWindowSystem::x11, {windowClass.className, windowClass.instance},
                                           windowClass.className.empty() ? windowClass.instance : windowClass.className);
}

}  // namespace kovi::holds::x11
