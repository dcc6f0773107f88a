#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Where a work session stands on this Mac. `completed` is final.
enum class WorkingSessionState { preparing, active, possibleIdle, autoBreak, manualBreak, suspended, completed };

// How the session stands with the server, apart from its own state.
enum class WorkingTransportState { online, degraded, offlineLocal, reconnecting, reconciled };

// Why time stops counting, in the order reasons are listed to the user.
// The first eight follow from readiness and the system; the rest are the
// engine's own findings.
enum class WorkingSuspensionReason {
  activityUnavailable,
  locked,
  displaySleeping,
  sleeping,
  appBlockingUnavailable,
  websiteBlockingUnavailable,
  phoneProtectionUnavailable,
  leaseUnavailable,
  observationGap,
  agentRestarted,
  persistenceFailure,
  handoff,
  blockingViolation,
};

template <>
struct EnumNames<WorkingSessionState> {
  static constexpr std::array table{
      std::pair{WorkingSessionState::preparing, std::string_view("preparing")},
      std::pair{WorkingSessionState::active, std::string_view("active")},
      std::pair{WorkingSessionState::possibleIdle, std::string_view("possibleIdle")},
      std::pair{WorkingSessionState::autoBreak, std::string_view("autoBreak")},
      std::pair{WorkingSessionState::manualBreak, std::string_view("manualBreak")},
      std::pair{WorkingSessionState::suspended, std::string_view("suspended")},
      std::pair{WorkingSessionState::completed, std::string_view("completed")},
  };
};

template <>
struct EnumNames<WorkingTransportState> {
  static constexpr std::array table{
      std::pair{WorkingTransportState::online, std::string_view("online")},
      std::pair{WorkingTransportState::degraded, std::string_view("degraded")},
      std::pair{WorkingTransportState::offlineLocal, std::string_view("offlineLocal")},
      std::pair{WorkingTransportState::reconnecting, std::string_view("reconnecting")},
      std::pair{WorkingTransportState::reconciled, std::string_view("reconciled")},
  };
};

template <>
struct EnumNames<WorkingSuspensionReason> {
  static constexpr std::array table{
      std::pair{WorkingSuspensionReason::activityUnavailable, std::string_view("activityUnavailable")},
      std::pair{WorkingSuspensionReason::locked, std::string_view("locked")},
      std::pair{WorkingSuspensionReason::displaySleeping, std::string_view("displaySleeping")},
      std::pair{WorkingSuspensionReason::sleeping, std::string_view("sleeping")},
      std::pair{WorkingSuspensionReason::appBlockingUnavailable, std::string_view("appBlockingUnavailable")},
      std::pair{WorkingSuspensionReason::websiteBlockingUnavailable, std::string_view("websiteBlockingUnavailable")},
      std::pair{WorkingSuspensionReason::phoneProtectionUnavailable, std::string_view("phoneProtectionUnavailable")},
      std::pair{WorkingSuspensionReason::leaseUnavailable, std::string_view("leaseUnavailable")},
      std::pair{WorkingSuspensionReason::observationGap, std::string_view("observationGap")},
      std::pair{WorkingSuspensionReason::agentRestarted, std::string_view("agentRestarted")},
      std::pair{WorkingSuspensionReason::persistenceFailure, std::string_view("persistenceFailure")},
      std::pair{WorkingSuspensionReason::handoff, std::string_view("handoff")},
      std::pair{WorkingSuspensionReason::blockingViolation, std::string_view("blockingViolation")},
  };
};

}  // namespace kovi
