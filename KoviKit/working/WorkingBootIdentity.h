#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "KoviKit/foundation/Time.h"

namespace kovi {

// The identity of the running boot of this machine: Linux's
// /proc/sys/kernel/random/boot_id, macOS's kern.bootsessionuuid. It changes
// with every restart, which is how offline counting notices one.
std::expected<std::string, std::string> currentBootIdentity();

// One reading of both clocks at once. The monotonic clock counts time since
// boot including sleep (Linux CLOCK_BOOTTIME, macOS CLOCK_MONOTONIC), so it
// keeps pace with the wall clock across a sleep and cannot be set by anyone.
struct WorkingClockReading {
  UnixMillis wall = 0;
  std::int64_t monotonicMS = 0;
  bool operator==(const WorkingClockReading&) const = default;
};

WorkingClockReading currentWorkingClockReading();

}  // namespace kovi
