#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingPassiveObservation.h"
#include "KoviKit/working/WorkingSessionError.h"
#include "KoviKit/working/WorkingSessionEvent.h"
#include "KoviKit/working/WorkingSessionPolicy.h"
#include "KoviKit/working/WorkingSessionReadiness.h"
#include "KoviKit/working/WorkingSessionSnapshot.h"
#include "KoviKit/working/WorkingSessionState.h"
#include "KoviKit/working/WorkingTimeSegment.h"

namespace kovi {

// Runs one work session on this Mac: a value that is fed observations with
// their instants and keeps the session's timeline of classified time. It
// never trusts a clock that runs backwards and never counts time while a
// required readiness is missing. Which events each state accepts and where
// they lead is one table in WorkingSessionEngine.cpp.
class WorkingSessionEngine {
 public:
  // A session in `preparing`; both identifiers must be valid.
  static std::expected<WorkingSessionEngine, WorkingSessionError> make(std::string sessionID, std::string deviceID,
                                                                       WorkingSessionPolicy policy);

  // 1 to 128 characters of ASCII letters, digits and "_.:-".
  static bool isValidIdentifier(std::string_view text);

  // Applies one event. An instant before 0, past the end of the JavaScript
  // date range or more than 366 days after the start is `invalidClock`. A refusal for the clock (`invalidClock`,
  // `clockMovedBackwards`) or the lifecycle (`notStarted`, `alreadyStarted`,
  // `alreadyCompleted`, `notReady`) changes nothing.
  std::expected<void, WorkingSessionError> observe(const WorkingSessionEvent& event);

  WorkingSessionSnapshot snapshot() const;

  const std::string& sessionID() const { return sessionID_; }
  const std::string& deviceID() const { return deviceID_; }
  const WorkingSessionPolicy& policy() const { return policy_; }
  WorkingSessionState state() const { return state_; }
  WorkingTransportState transport() const { return transport_; }
  std::optional<WorkingSuspensionReason> suspensionReason() const { return suspensionReason_; }
  const WorkingSessionReadiness& readiness() const { return readiness_; }
  std::optional<UnixMillis> startedAtMS() const { return startedAtMS_; }
  std::optional<UnixMillis> lastObservedAtMS() const { return lastObservedAtMS_; }
  bool scheduledBreakActive() const { return scheduledBreakActive_; }
  // Whether the session is on a break a remote command imposed, not one the user asked for.
  bool remoteBreakActive() const { return state_ == WorkingSessionState::manualBreak && !manualBreakRequested_; }
  const std::vector<WorkingTimeSegment>& timeline() const { return timeline_; }
  // Whether the last observation lies past the session's hard window.
  bool pastHardWindow() const;
  // Whether offline time has run past what the last verified protection state covers.
  bool offlineBeyondLimit() const;

  bool operator==(const WorkingSessionEngine&) const = default;

 private:
  friend struct WorkingSessionTransitions;

  WorkingSessionEngine(std::string sessionID, std::string deviceID, WorkingSessionPolicy policy)
      : sessionID_(std::move(sessionID)), deviceID_(std::move(deviceID)), policy_(std::move(policy)) {}

  // Classifies the time from the last observation up to `at`, moving through
  // the clock-driven changes (idle, automatic break, observation gap) on the way.
  void advanceTo(UnixMillis at);
  // The kind of time at `from` in the current state, and the next instant
  // (at most `until`) at which that kind or the state may change.
  std::pair<WorkingTimeSegment::Kind, UnixMillis> classify(UnixMillis from, UnixMillis until) const;
  void applyClockDrivenChanges(UnixMillis at);
  void append(UnixMillis start, UnixMillis end, WorkingTimeSegment::Kind kind);
  std::optional<std::int64_t> effectiveIdleThresholdMS() const;
  bool offlineTransport() const;
  bool inPomodoroBreak(UnixMillis at) const;
  void suspend(WorkingSuspensionReason reason);
  void resumeAt(UnixMillis at);
  void restartResumeDebounce();
  void settleProvisionalTime();
  void refreshScheduledBreak();

  std::string sessionID_;
  std::string deviceID_;
  WorkingSessionPolicy policy_;
  WorkingSessionState state_ = WorkingSessionState::preparing;
  WorkingTransportState transport_ = WorkingTransportState::online;
  std::optional<WorkingSuspensionReason> suspensionReason_;
  WorkingSessionReadiness readiness_;
  std::optional<UnixMillis> startedAtMS_;
  std::optional<UnixMillis> lastObservedAtMS_;
  std::optional<UnixMillis> lastActivityAtMS_;
  std::optional<UnixMillis> resumeActivityStartMS_;
  std::optional<UnixMillis> resumeLastActivityMS_;
  bool manualBreakRequested_ = false;
  std::vector<WorkingTimeSegment> timeline_;
  WorkingPassiveObservation passiveObservation_;
  bool passiveContinuityValid_ = false;
  bool scheduledBreakActive_ = false;
  std::optional<UnixMillis> lastPassiveObservationAtMS_;
  // The last instant at which the server's view of the protection was
  // current; offline time counts at most `workingMaximumOfflineMS` beyond it.
  std::optional<UnixMillis> lastVerifiedAtMS_;
};

}  // namespace kovi
