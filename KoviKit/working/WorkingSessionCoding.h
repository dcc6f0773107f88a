#pragma once

// JSON of the session engine's records: the policy, readiness, passive
// observations, timeline segments and the published snapshot, each with its
// keys in declared order.

#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingPassiveObservation.h"
#include "KoviKit/working/WorkingSessionPolicy.h"
#include "KoviKit/working/WorkingSessionReadiness.h"
#include "KoviKit/working/WorkingSessionSnapshot.h"
#include "KoviKit/working/WorkingTimeSegment.h"

namespace kovi {

template <>
struct JsonRecordFields<WorkingSessionPolicy::Pomodoro> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("workMS", &WorkingSessionPolicy::Pomodoro::workMS),
                                            field("breakMS", &WorkingSessionPolicy::Pomodoro::breakMS)};
};

template <>
struct JsonRecordFields<WorkingSessionPolicy> : StrictJsonRecord {
  using P = WorkingSessionPolicy;
  static constexpr auto fields = std::tuple{
      field("idleThresholdMS", &P::idleThresholdMS),
      field("allowsIdleDisabled", &P::allowsIdleDisabled),
      field("resumeMode", &P::resumeMode),
      field("resumeDebounceMS", &P::resumeDebounceMS),
      field("resumeMaximumInputGapMS", &P::resumeMaximumInputGapMS),
      field("hardWindowMS", &P::hardWindowMS),
      field("maximumObservationGapMS", &P::maximumObservationGapMS),
      field("requiresAppBlocking", &P::requiresAppBlocking),
      field("requiresWebsiteBlocking", &P::requiresWebsiteBlocking),
      field("requiresPhoneProtection", &P::requiresPhoneProtection),
      field("requiresServerLease", &P::requiresServerLease),
      field("passiveIdleThresholdMS", &P::passiveIdleThresholdMS),
      field("pomodoro", &P::pomodoro),
      field("pomodoroOffsetMS", &P::pomodoroOffsetMS),
  };
};

template <>
struct JsonRecordFields<WorkingSessionReadiness> : StrictJsonRecord {
  using R = WorkingSessionReadiness;
  static constexpr auto fields = std::tuple{
      field("activityMonitoring", &R::activityMonitoring), field("deviceUnlocked", &R::deviceUnlocked),
      field("displayAwake", &R::displayAwake),             field("appBlocking", &R::appBlocking),
      field("websiteBlocking", &R::websiteBlocking),       field("phoneProtection", &R::phoneProtection),
      field("serverLease", &R::serverLease),
  };
};

template <>
struct JsonRecordFields<WorkingPassiveObservation> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("eligible", &WorkingPassiveObservation::eligible),
                                            field("continuityToken", &WorkingPassiveObservation::continuityToken)};
};

template <>
struct JsonRecordFields<WorkingTimeSegment> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("startMS", &WorkingTimeSegment::startMS), field("endMS", &WorkingTimeSegment::endMS),
                 field("kind", &WorkingTimeSegment::kind)};
};

template <>
struct JsonRecordFields<WorkingSessionSnapshot> : StrictJsonRecord {
  using S = WorkingSessionSnapshot;
  static constexpr auto fields = std::tuple{
      field("sessionID", &S::sessionID),
      field("deviceID", &S::deviceID),
      field("state", &S::state),
      field("transport", &S::transport),
      field("suspensionReason", &S::suspensionReason),
      field("elapsedMS", &S::elapsedMS),
      field("candidateActiveMS", &S::candidateActiveMS),
      field("provisionalMS", &S::provisionalMS),
      field("idleMS", &S::idleMS),
      field("breakMS", &S::breakMS),
      field("unverifiedMS", &S::unverifiedMS),
      field("violationMS", &S::violationMS),
      field("segments", &S::segments),
      field("passiveEligible", &S::passiveEligible),
      field("pomodoroPhase", &S::pomodoroPhase),
      field("pomodoroRemainingMS", &S::pomodoroRemainingMS),
      field("pomodoroCycleIndex", &S::pomodoroCycleIndex),
  };
};

}  // namespace kovi
