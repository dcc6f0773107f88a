#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/platform/MacRunningApplication.h"

namespace kovi::holds::mac {

// One of the workspace's running applications in the agent's terms.
MacRunningApplication runningApplicationFrom(NSRunningApplication* application);

}  // namespace kovi::holds::mac
