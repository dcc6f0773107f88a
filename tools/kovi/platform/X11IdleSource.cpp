#include "tools/kovi/platform/X11IdleSource.h"

#include <X11/Xlib.h>
#include <X11/extensions/dpms.h>
#include <X11/extensions/scrnsaver.h>

namespace kovi::tool {

struct X11IdleSource::Handles {
  Display* display = nullptr;
  XScreenSaverInfo* info = nullptr;
  bool hasDpms = false;

  ~Handles() {
    if (info) XFree(info);
    if (display) XCloseDisplay(display);
  }
};

std::unique_ptr<X11IdleSource> X11IdleSource::open() {
  auto handles = std::make_unique<Handles>();
  handles->display = XOpenDisplay(nullptr);
  if (!handles->display) return nullptr;
  int eventBase = 0;
  int errorBase = 0;
  if (!XScreenSaverQueryExtension(handles->display, &eventBase, &errorBase)) return nullptr;
  handles->info = XScreenSaverAllocInfo();
  if (!handles->info) return nullptr;
  handles->hasDpms = DPMSQueryExtension(handles->display, &eventBase, &errorBase) && DPMSCapable(handles->display);
  return std::unique_ptr<X11IdleSource>(new X11IdleSource(std::move(handles)));
}

X11IdleSource::X11IdleSource(std::unique_ptr<Handles> handles) : handles_(std::move(handles)) {}
X11IdleSource::~X11IdleSource() = default;

std::optional<std::int64_t> X11IdleSource::inputIdleMS() {
  if (!XScreenSaverQueryInfo(handles_->display, DefaultRootWindow(handles_->display), handles_->info)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(handles_->info->idle);
}

bool X11IdleSource::displayAwake() {
  if (!handles_->hasDpms) return true;
  CARD16 level = DPMSModeOn;
  BOOL enabled = False;
  if (!DPMSInfo(handles_->display, &level, &enabled)) return true;
  return !enabled || level == DPMSModeOn;
}

}  // namespace kovi::tool
