#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingSessionError.h"

namespace kovi {

// What the session engine needs of a rule set for one session. Every
// duration is in milliseconds.
struct WorkingSessionPolicy {
  enum class ResumeMode { automatic, confirmation };

  struct Pomodoro {
    std::int64_t workMS = 0;
    std::int64_t breakMS = 0;
    bool operator==(const Pomodoro&) const = default;
  };

  std::optional<std::int64_t> idleThresholdMS;
  bool allowsIdleDisabled = false;
  ResumeMode resumeMode = ResumeMode::automatic;
  std::int64_t resumeDebounceMS = 0;
  std::int64_t resumeMaximumInputGapMS = 0;
  std::optional<std::int64_t> hardWindowMS;
  std::optional<std::int64_t> maximumObservationGapMS;
  bool requiresAppBlocking = false;
  bool requiresWebsiteBlocking = false;
  bool requiresPhoneProtection = false;
  bool requiresServerLease = false;
  std::optional<std::int64_t> passiveIdleThresholdMS;
  std::optional<Pomodoro> pomodoro;
  std::optional<std::int64_t> pomodoroOffsetMS;

  // The policy of a session under `rules` (a rule set that has passed its
  // checks). Beside the fields with a rule of the same name:
  // - idle detection may be off only for `flexible` and `timerOnly` strictness;
  // - inputs during a resume may be at most one heartbeat apart, and never
  //   further apart than the whole debounce;
  // - observations may be at most one heartbeat plus the grace apart;
  // - app and website blocking are required when the Mac's selection says
  //   so; iPhone protection when either iPhone selection is required and the
  //   iPhone is not only auxiliary; a server lease whenever a stake is funded;
  // - passive work has its own idle threshold only when passive work is
  //   allowed; a pomodoro cycle starts with the session.
  // A rule set whose strictness needs idle detection but sets no threshold
  // yields `invalidPolicy`.
  static std::expected<WorkingSessionPolicy, WorkingSessionError> fromRules(const WorkingRules& rules);

  // Every duration positive and at most 366 days, pomodoro phases at least a
  // minute (a pomodoro break and the offset may be zero); a missing idle
  // threshold only where idle detection may be off.
  std::expected<void, WorkingSessionError> validate() const;

  bool operator==(const WorkingSessionPolicy&) const = default;
};

template <>
struct EnumNames<WorkingSessionPolicy::ResumeMode> {
  static constexpr std::array table{
      std::pair{WorkingSessionPolicy::ResumeMode::automatic, std::string_view("automatic")},
      std::pair{WorkingSessionPolicy::ResumeMode::confirmation, std::string_view("confirmation")},
  };
};

}  // namespace kovi
