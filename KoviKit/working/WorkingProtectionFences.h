#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingProtectionPolicy.h"

namespace kovi {

// The newest protection state a device has accepted, kept per device so an
// older or replayed policy can never take effect again. Its expiry runs on
// the monotonic clock: a wall clock set back cannot extend it.
struct WorkingProtectionRevisionFence {
  std::optional<std::string> sessionID;
  std::int64_t epoch = 0;
  std::int64_t revision = 0;
  bool emergencyReleased = false;
  std::optional<WorkingProtectionPolicy> policy;
  std::optional<std::int64_t> expiryMonotonicMS;

  // Whether a policy of (`epoch`, `revision`) is newer than the fence: a later
  // epoch, or the same epoch with a later revision.
  bool admits(std::int64_t epoch, std::int64_t revision) const;
  // An expiry that has been reached; a fence without one never expires.
  bool isExpired(std::int64_t monotonicNowMS) const;

  bool operator==(const WorkingProtectionRevisionFence&) const = default;
};

// The session a device has prepared protection for, and whether it is closed:
// a closed fence admits no session, an open one only its own (or any while it
// names none).
struct WorkingProtectionSessionFence {
  std::optional<std::string> sessionID;
  std::optional<UnixMillis> preparedAt;
  bool isClosed = false;

  bool admits(std::string_view candidateSessionID) const;

  bool operator==(const WorkingProtectionSessionFence&) const = default;
};

}  // namespace kovi
