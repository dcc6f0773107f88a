#pragma once

#include <cstdint>
#include <optional>

namespace kovi {

// One reading of what this desktop shows about the user and the machine.
// A signal the desktop cannot show is absent, never guessed.
struct WorkingDesktopReading {
  std::optional<std::int64_t> inputIdleMS;  // time since the last keyboard or pointer input
  std::optional<bool> displayAwake;
  std::optional<bool> locked;
  std::optional<bool> preparingForSleep;

  bool operator==(const WorkingDesktopReading&) const = default;
};

// The desktop's signals behind one small interface, so the session engine's
// driver never sees X11 or D-Bus.
class WorkingDesktopSignals {
 public:
  virtual ~WorkingDesktopSignals() = default;
  virtual WorkingDesktopReading read() = 0;
};

}  // namespace kovi
