#include "tools/kovi/platform/DesktopSignals.h"

#include "tools/kovi/platform/LogindSource.h"
#include "tools/kovi/platform/X11IdleSource.h"

namespace kovi::tool {
namespace {

class LinuxDesktopSignals final : public WorkingDesktopSignals {
 public:
  LinuxDesktopSignals(std::unique_ptr<X11IdleSource> x11, std::unique_ptr<LogindSource> logind)
      : x11_(std::move(x11)), logind_(std::move(logind)) {}

  WorkingDesktopReading read() override {
    WorkingDesktopReading reading;
    if (x11_) {
      reading.inputIdleMS = x11_->inputIdleMS();
      reading.displayAwake = x11_->displayAwake();
    }
    if (logind_) {
      reading.locked = logind_->locked();
      reading.preparingForSleep = logind_->preparingForSleep();
    }
    return reading;
  }

 private:
  std::unique_ptr<X11IdleSource> x11_;
  std::unique_ptr<LogindSource> logind_;
};

}  // namespace

DesktopSignals openDesktopSignals() {
  DesktopSignals opened;
  auto x11 = X11IdleSource::open();
  if (!x11) opened.unavailable.emplace_back("X11 input idle time (no display with the XScreenSaver extension)");
  auto logind = LogindSource::connect();
  if (!logind) opened.unavailable.emplace_back("logind screen lock and sleep (system bus unreachable)");
  opened.signals = std::make_unique<LinuxDesktopSignals>(std::move(x11), std::move(logind));
  return opened;
}

}  // namespace kovi::tool
