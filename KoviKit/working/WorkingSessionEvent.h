#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingPassiveObservation.h"
#include "KoviKit/working/WorkingSessionReadiness.h"
#include "KoviKit/working/WorkingSessionState.h"

namespace kovi {

// One observation or command fed to the session engine at its instant.
// `readiness` belongs to `start` and `readiness`, `passive` to `passive`,
// `transport` to `transport`; the other types carry only the instant.
struct WorkingSessionEvent {
  enum class Type {
    start,
    readiness,
    activity,
    tick,
    sleep,
    wake,
    lock,
    unlock,
    displaySleep,
    displayWake,
    manualBreak,
    remoteBreak,
    resume,
    passive,
    transport,
    restart,
    persistenceFailure,
    handoff,
    violation,
    complete,
  };

  UnixMillis at = 0;
  Type type = Type::tick;
  WorkingSessionReadiness readiness;
  WorkingPassiveObservation passive;
  WorkingTransportState transport = WorkingTransportState::online;

  bool operator==(const WorkingSessionEvent&) const = default;
};

template <>
struct EnumNames<WorkingSessionEvent::Type> {
  using Type = WorkingSessionEvent::Type;
  static constexpr std::array table{
      std::pair{Type::start, std::string_view("start")},
      std::pair{Type::readiness, std::string_view("readiness")},
      std::pair{Type::activity, std::string_view("activity")},
      std::pair{Type::tick, std::string_view("tick")},
      std::pair{Type::sleep, std::string_view("sleep")},
      std::pair{Type::wake, std::string_view("wake")},
      std::pair{Type::lock, std::string_view("lock")},
      std::pair{Type::unlock, std::string_view("unlock")},
      std::pair{Type::displaySleep, std::string_view("displaySleep")},
      std::pair{Type::displayWake, std::string_view("displayWake")},
      std::pair{Type::manualBreak, std::string_view("manualBreak")},
      std::pair{Type::remoteBreak, std::string_view("remoteBreak")},
      std::pair{Type::resume, std::string_view("resume")},
      std::pair{Type::passive, std::string_view("passive")},
      std::pair{Type::transport, std::string_view("transport")},
      std::pair{Type::restart, std::string_view("restart")},
      std::pair{Type::persistenceFailure, std::string_view("persistenceFailure")},
      std::pair{Type::handoff, std::string_view("handoff")},
      std::pair{Type::violation, std::string_view("violation")},
      std::pair{Type::complete, std::string_view("complete")},
  };
};

}  // namespace kovi
