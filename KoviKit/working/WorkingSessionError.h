#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingSessionState.h"

namespace kovi {

// Why the session engine refused an observation or command. A refused
// observation leaves the engine as it was, except that a command refused
// after its instant was accepted (`cannotResume`) has still moved the clock.
struct WorkingSessionError {
  enum class Kind {
    notReady,  // `reasons` lists every blocking reason, in the enumeration's order
    invalidPolicy,
    invalidIdentifier,
    invalidClock,
    clockMovedBackwards,
    alreadyStarted,
    notStarted,
    cannotResume,
    alreadyCompleted,
  };

  Kind kind;
  std::vector<WorkingSuspensionReason> reasons;

  bool operator==(const WorkingSessionError&) const = default;
};

template <>
struct EnumNames<WorkingSessionError::Kind> {
  using Kind = WorkingSessionError::Kind;
  static constexpr std::array table{
      std::pair{Kind::notReady, std::string_view("notReady")},
      std::pair{Kind::invalidPolicy, std::string_view("invalidPolicy")},
      std::pair{Kind::invalidIdentifier, std::string_view("invalidIdentifier")},
      std::pair{Kind::invalidClock, std::string_view("invalidClock")},
      std::pair{Kind::clockMovedBackwards, std::string_view("clockMovedBackwards")},
      std::pair{Kind::alreadyStarted, std::string_view("alreadyStarted")},
      std::pair{Kind::notStarted, std::string_view("notStarted")},
      std::pair{Kind::cannotResume, std::string_view("cannotResume")},
      std::pair{Kind::alreadyCompleted, std::string_view("alreadyCompleted")},
  };
};

}  // namespace kovi
