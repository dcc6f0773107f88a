#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// One classified stretch of a work session's timeline, [startMS, endMS).
// Counted work is `active`; `provisional` may still become work once
// confirmed; `idle` follows the idle threshold; `break` is manual, automatic
// or pomodoro break time; `unverified` is time whose conditions could not be
// shown; `violation` is time in breach of blocking. Checkpoints carry the
// same kinds.
struct WorkingTimeSegment {
  enum class Kind { active, provisional, idle, break_, unverified, violation };

  UnixMillis startMS = 0;
  UnixMillis endMS = 0;
  Kind kind = Kind::active;

  bool operator==(const WorkingTimeSegment&) const = default;
};

template <>
struct EnumNames<WorkingTimeSegment::Kind> {
  static constexpr std::array table{
      std::pair{WorkingTimeSegment::Kind::active, std::string_view("active")},
      std::pair{WorkingTimeSegment::Kind::provisional, std::string_view("provisional")},
      std::pair{WorkingTimeSegment::Kind::idle, std::string_view("idle")},
      std::pair{WorkingTimeSegment::Kind::break_, std::string_view("break")},
      std::pair{WorkingTimeSegment::Kind::unverified, std::string_view("unverified")},
      std::pair{WorkingTimeSegment::Kind::violation, std::string_view("violation")},
  };
};

}  // namespace kovi
