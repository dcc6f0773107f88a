#include "tools/kovi/platform/DesktopSignals.h"

// This system has no reader for its desktop signals yet. Every signal reads
// as absent, which the session engine treats as not ready: a session then
// waits or stays suspended instead of counting time nothing has shown.

namespace kovi::tool {
namespace {

class UnavailableDesktopSignals final : public WorkingDesktopSignals {
 public:
  WorkingDesktopReading read() override { return {}; }
};

}  // namespace

DesktopSignals openDesktopSignals() {
  DesktopSignals opened;
  opened.signals = std::make_unique<UnavailableDesktopSignals>();
  opened.unavailable = {"input idle time (no reader on this system)", "display power (no reader on this system)",
                        "screen lock (no reader on this system)", "system sleep (no reader on this system)"};
  return opened;
}

}  // namespace kovi::tool
