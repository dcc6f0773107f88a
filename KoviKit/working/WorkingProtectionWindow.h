#pragma once

#include <cstdint>
#include <expected>
#include <string>

#include "KoviKit/foundation/Time.h"

namespace kovi {

// The span in which one owner's device may protect one session under one
// rule set.
struct WorkingProtectionWindow {
  // A window that fails its checks; `reason` says which.
  struct InvalidWindow {
    std::string reason;
    bool operator==(const InvalidWindow&) const = default;
  };

  std::int64_t generation = 0;
  std::string ownerID;
  std::string sessionID;
  std::string rulesHash;
  UnixMillis startsAt = 0;
  UnixMillis endsAt = 0;

  // `generation` at least 1; `ownerID` and `sessionID` identifiers (1 to 128
  // of letters, digits and "_.:-"); `rulesHash` 64 lowercase hex digits;
  // 0 <= `startsAt` < `endsAt` <= 8,640,000,000,000,000 and at most 366 days long.
  std::expected<void, InvalidWindow> validate() const;
  // [startsAt, endsAt)
  bool contains(UnixMillis instant) const { return instant >= startsAt && instant < endsAt; }

  bool operator==(const WorkingProtectionWindow&) const = default;
};

}  // namespace kovi
