#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi::holds {

// The hold that is due at an instant, and when that case stops applying.
struct MacHoldsDue {
  enum class Kind { study, sleep, social, socialOpen, none };

  Kind kind = Kind::none;
  std::optional<Date> until;  // present for every kind but none

  static MacHoldsDue study(Date until) { return {Kind::study, until}; }
  static MacHoldsDue sleep(Date until) { return {Kind::sleep, until}; }
  static MacHoldsDue social(Date until) { return {Kind::social, until}; }
  static MacHoldsDue socialOpen(Date until) { return {Kind::socialOpen, until}; }
  static MacHoldsDue none() { return {}; }

  bool operator==(const MacHoldsDue&) const = default;
};

}  // namespace kovi::holds

namespace kovi {

template <>
struct EnumNames<holds::MacHoldsDue::Kind> {
  using Kind = holds::MacHoldsDue::Kind;
  static constexpr std::array table{
      std::pair{Kind::study, std::string_view("study")},
      std::pair{Kind::sleep, std::string_view("sleep")},
      std::pair{Kind::social, std::string_view("social")},
      std::pair{Kind::socialOpen, std::string_view("socialOpen")},
      std::pair{Kind::none, std::string_view("none")},
  };
};

}  // namespace kovi
