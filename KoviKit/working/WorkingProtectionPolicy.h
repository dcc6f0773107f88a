#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// What the server wants a device's protection to be. `revision` grows with
// every change; `until` ends a break or bypass, after which `returnMode`
// applies again.
struct WorkingProtectionPolicy {
  enum class Mode { active, break_, bypass, emergency };

  std::int64_t version = 1;
  std::int64_t revision = 0;
  Mode desiredMode = Mode::active;
  UnixMillis requestedAt = 0;
  std::optional<UnixMillis> until;
  std::optional<std::string> commandID;  // the remote command that caused the change
  std::int64_t bypassUses = 0;
  std::int64_t bypassRemaining = 0;
  std::optional<Mode> returnMode;

  bool operator==(const WorkingProtectionPolicy&) const = default;
};

template <>
struct EnumNames<WorkingProtectionPolicy::Mode> {
  using Mode = WorkingProtectionPolicy::Mode;
  static constexpr std::array table{
      std::pair{Mode::active, std::string_view("active")},
      std::pair{Mode::break_, std::string_view("break")},
      std::pair{Mode::bypass, std::string_view("bypass")},
      std::pair{Mode::emergency, std::string_view("emergency")},
  };
};

}  // namespace kovi
