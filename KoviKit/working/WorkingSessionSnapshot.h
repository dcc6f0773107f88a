#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingSessionState.h"
#include "KoviKit/working/WorkingTimeSegment.h"

namespace kovi {

// What the engine publishes about a session. `candidateActiveMS` is counted
// work plus provisional work not yet settled (so `provisionalMS` is part of
// it); every other total is the sum of its kind's segments, and all kinds
// together make `elapsedMS`, the session's wall-clock length so far.
struct WorkingSessionSnapshot {
  enum class PomodoroPhase { pomodoroWork, pomodoroBreak };

  std::string sessionID;
  std::string deviceID;
  WorkingSessionState state = WorkingSessionState::preparing;
  WorkingTransportState transport = WorkingTransportState::online;
  std::optional<WorkingSuspensionReason> suspensionReason;
  std::int64_t elapsedMS = 0;
  std::int64_t candidateActiveMS = 0;
  std::int64_t provisionalMS = 0;
  std::int64_t idleMS = 0;
  std::int64_t breakMS = 0;
  std::int64_t unverifiedMS = 0;
  std::int64_t violationMS = 0;
  std::vector<WorkingTimeSegment> segments;
  std::optional<bool> passiveEligible;
  std::optional<PomodoroPhase> pomodoroPhase;
  std::optional<std::int64_t> pomodoroRemainingMS;
  std::optional<std::int64_t> pomodoroCycleIndex;

  bool operator==(const WorkingSessionSnapshot&) const = default;
};

template <>
struct EnumNames<WorkingSessionSnapshot::PomodoroPhase> {
  static constexpr std::array table{
      std::pair{WorkingSessionSnapshot::PomodoroPhase::pomodoroWork, std::string_view("pomodoroWork")},
      std::pair{WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak, std::string_view("pomodoroBreak")},
  };
};

}  // namespace kovi
