#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KoviKit/working/WorkingDesktopSignals.h"

namespace kovi::tool {

// This machine's desktop signals: X11 on $DISPLAY and logind on the system
// bus, each where it can be reached. `unavailable` names every source that
// could not be reached; its signals then read as absent.
struct DesktopSignals {
  std::unique_ptr<WorkingDesktopSignals> signals;
  std::vector<std::string> unavailable;
};

DesktopSignals openDesktopSignals();

}  // namespace kovi::tool
