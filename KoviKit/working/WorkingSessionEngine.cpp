#include "KoviKit/working/WorkingSessionEngine.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/working/WorkingOfflineLimit.h"
#include "KoviKit/working/WorkingRuleLimits.h"

namespace kovi {
namespace {

using Kind = WorkingTimeSegment::Kind;
using State = WorkingSessionState;
using Type = WorkingSessionEvent::Type;

// No session outlasts the longest duration a rule may state (366 days); an
// instant beyond it is a broken clock, and refusing it keeps the timeline
// finite.
constexpr std::int64_t kLongestSessionMS = kWorkingLongestKoviMillis;

WorkingSessionError refusal(WorkingSessionError::Kind kind) { return WorkingSessionError{kind, {}}; }

constexpr unsigned bit(State state) { return 1U << static_cast<unsigned>(state); }
constexpr unsigned kBreaks = bit(State::autoBreak) | bit(State::manualBreak);
constexpr unsigned kRunning =
    bit(State::active) | bit(State::possibleIdle) | kBreaks | bit(State::suspended);

// Where an instant falls in the pomodoro cycle: the cycle's index (negative
// before an offset cycle begins) and its phase.
struct PomodoroPosition {
  std::int64_t cycleIndex;
  bool working;
  // Time until the current phase ends.
  std::int64_t phaseRemaining;
};

PomodoroPosition pomodoroPosition(const WorkingSessionPolicy& policy, UnixMillis startedAt, UnixMillis at) {
  const auto& pomodoro = *policy.pomodoro;
  const std::int64_t cycle = checkedAdd(pomodoro.workMS, pomodoro.breakMS);
  const std::int64_t sinceFirstCycle = checkedSub(checkedSub(at, startedAt), policy.pomodoroOffsetMS.value_or(0));
  std::int64_t index = sinceFirstCycle / cycle;
  if (sinceFirstCycle % cycle != 0 && sinceFirstCycle < 0) --index;
  const std::int64_t position = sinceFirstCycle - index * cycle;
  const bool working = position < pomodoro.workMS;
  return {index, working, (working ? pomodoro.workMS : cycle) - position};
}

}  // namespace

// Which events each state accepts and what they do: the engine's whole
// transition table. Before the start only `start` and `readiness` are
// accepted (others fail with `notStarted`); after `complete` nothing is.
// While running, the time since the last observation is classified first
// (which may itself move the state: idle, automatic break, observation gap),
// then the event is checked against `acceptedWhileRunning` and applied.
struct WorkingSessionTransitions {
  using Effect = std::expected<void, WorkingSessionError> (*)(WorkingSessionEngine&, const WorkingSessionEvent&);

  struct Row {
    Type type;
    bool acceptedWhilePreparing;
    // States (after the clock has advanced) that accept the event; an empty
    // set refuses it as soon as the session has started.
    unsigned acceptedWhileRunning;
    // Why the event is refused in a running state it does not accept.
    WorkingSessionError::Kind refusal;
    // The time since the last observation was the agent's downtime: it is
    // unverified whatever the state was.
    bool sinceLastIsDowntime;
    Effect effect;
  };

  static std::expected<void, WorkingSessionError> start(WorkingSessionEngine& engine, const WorkingSessionEvent& event) {
    auto reasons = workingBlockingReasons(engine.policy_, event.readiness);
    if (!reasons.empty()) return std::unexpected(WorkingSessionError{WorkingSessionError::Kind::notReady, reasons});
    engine.readiness_ = event.readiness;
    engine.state_ = State::active;
    engine.startedAtMS_ = engine.lastObservedAtMS_ = engine.lastActivityAtMS_ = event.at;
    engine.lastVerifiedAtMS_ = event.at;
    engine.refreshScheduledBreak();
    return {};
  }

  static void applyReadiness(WorkingSessionEngine& engine, const WorkingSessionReadiness& readiness) {
    engine.readiness_ = readiness;
    if (engine.state_ == State::preparing) return;
    const auto reasons = workingBlockingReasons(engine.policy_, readiness);
    if (!reasons.empty()) engine.suspend(reasons.front());
  }

  static std::expected<void, WorkingSessionError> readiness(WorkingSessionEngine& engine,
                                                            const WorkingSessionEvent& event) {
    applyReadiness(engine, event.readiness);
    engine.lastObservedAtMS_ = event.at;
    return {};
  }

  template <bool WorkingSessionReadiness::*flag, bool value>
  static std::expected<void, WorkingSessionError> setFlag(WorkingSessionEngine& engine, const WorkingSessionEvent&) {
    WorkingSessionReadiness readiness = engine.readiness_;
    readiness.*flag = value;
    applyReadiness(engine, readiness);
    return {};
  }

  static std::expected<void, WorkingSessionError> activity(WorkingSessionEngine& engine,
                                                           const WorkingSessionEvent& event) {
    engine.lastActivityAtMS_ = event.at;
    if (engine.state_ == State::active) return {};
    if (engine.state_ == State::possibleIdle) {
      engine.state_ = State::active;
      return {};
    }
    if (!workingBlockingReasons(engine.policy_, engine.readiness_).empty() ||
        engine.policy_.resumeMode != WorkingSessionPolicy::ResumeMode::automatic) {
      engine.restartResumeDebounce();
      return {};
    }
    // Automatic resume: inputs no further apart than the maximum gap, from
    // the first to the last spanning at least the debounce.
    if (!engine.resumeLastActivityMS_ ||
        checkedSub(event.at, *engine.resumeLastActivityMS_) > engine.policy_.resumeMaximumInputGapMS) {
      engine.resumeActivityStartMS_ = event.at;
    }
    engine.resumeLastActivityMS_ = event.at;
    if (checkedSub(event.at, *engine.resumeActivityStartMS_) >= engine.policy_.resumeDebounceMS) engine.resumeAt(event.at);
    return {};
  }

  static std::expected<void, WorkingSessionError> nothing(WorkingSessionEngine&, const WorkingSessionEvent&) {
    return {};
  }

  static std::expected<void, WorkingSessionError> wake(WorkingSessionEngine& engine, const WorkingSessionEvent&) {
    engine.restartResumeDebounce();
    return {};
  }

  template <WorkingSuspensionReason reason>
  static std::expected<void, WorkingSessionError> suspend(WorkingSessionEngine& engine, const WorkingSessionEvent&) {
    engine.suspend(reason);
    return {};
  }

  static std::expected<void, WorkingSessionError> manualBreak(WorkingSessionEngine& engine,
                                                              const WorkingSessionEvent&) {
    engine.state_ = State::manualBreak;
    engine.manualBreakRequested_ = true;
    engine.restartResumeDebounce();
    return {};
  }

  // A break imposed by a remote command: break time like the user's own, but
  // without the user's request, which is how the engine tells the two apart.
  static std::expected<void, WorkingSessionError> remoteBreak(WorkingSessionEngine& engine,
                                                              const WorkingSessionEvent&) {
    engine.state_ = State::manualBreak;
    engine.manualBreakRequested_ = false;
    engine.restartResumeDebounce();
    return {};
  }

  static std::expected<void, WorkingSessionError> resume(WorkingSessionEngine& engine,
                                                         const WorkingSessionEvent& event) {
    if (!workingBlockingReasons(engine.policy_, engine.readiness_).empty()) {
      return std::unexpected(refusal(WorkingSessionError::Kind::cannotResume));
    }
    engine.resumeAt(event.at);
    return {};
  }

  static std::expected<void, WorkingSessionError> passive(WorkingSessionEngine& engine,
                                                          const WorkingSessionEvent& event) {
    const bool continues = !engine.lastPassiveObservationAtMS_ || !engine.passiveObservation_.eligible ||
                           engine.passiveObservation_.continuityToken == event.passive.continuityToken;
    engine.passiveContinuityValid_ = event.passive.eligible && continues;
    engine.passiveObservation_ = event.passive;
    engine.lastPassiveObservationAtMS_ = event.at;
    // Passive work observed within its own idle threshold brings a possible
    // idle back to work.
    const auto threshold = engine.effectiveIdleThresholdMS();
    if (engine.state_ == State::possibleIdle && threshold &&
        event.at < checkedAdd(*engine.lastActivityAtMS_, *threshold)) {
      engine.state_ = State::active;
    }
    return {};
  }

  static std::expected<void, WorkingSessionError> transport(WorkingSessionEngine& engine,
                                                            const WorkingSessionEvent& event) {
    engine.transport_ = event.transport;
    if (!engine.offlineTransport()) engine.lastVerifiedAtMS_ = event.at;
    if (event.transport == WorkingTransportState::reconciled) engine.settleProvisionalTime();
    return {};
  }

  static std::expected<void, WorkingSessionError> complete(WorkingSessionEngine& engine, const WorkingSessionEvent&) {
    engine.state_ = State::completed;
    engine.suspensionReason_.reset();
    engine.scheduledBreakActive_ = false;
    return {};
  }

  using Reason = WorkingSuspensionReason;
  using Readiness = WorkingSessionReadiness;
  static constexpr auto cannotResume = WorkingSessionError::Kind::cannotResume;

  // Indexed by event type, in the type's declared order.
  static constexpr std::array<Row, 20> table{{
      {Type::start, true, 0, WorkingSessionError::Kind::alreadyStarted, false, start},
      {Type::readiness, true, kRunning, cannotResume, false, readiness},
      {Type::activity, false, kRunning, cannotResume, false, activity},
      {Type::tick, false, kRunning, cannotResume, false, nothing},
      {Type::sleep, false, kRunning, cannotResume, false, suspend<Reason::sleeping>},
      {Type::wake, false, kRunning, cannotResume, false, wake},
      {Type::lock, false, kRunning, cannotResume, false, setFlag<&Readiness::deviceUnlocked, false>},
      {Type::unlock, false, kRunning, cannotResume, false, setFlag<&Readiness::deviceUnlocked, true>},
      {Type::displaySleep, false, kRunning, cannotResume, false, setFlag<&Readiness::displayAwake, false>},
      {Type::displayWake, false, kRunning, cannotResume, false, setFlag<&Readiness::displayAwake, true>},
      {Type::manualBreak, false, bit(State::active) | bit(State::possibleIdle) | kBreaks, cannotResume, false,
       manualBreak},
      {Type::remoteBreak, false, bit(State::active) | bit(State::possibleIdle) | kBreaks, cannotResume, false,
       remoteBreak},
      {Type::resume, false, kBreaks | bit(State::suspended), cannotResume, false, resume},
      {Type::passive, false, kRunning, cannotResume, false, passive},
      {Type::transport, false, kRunning, cannotResume, false, transport},
      {Type::restart, false, kRunning, cannotResume, true, suspend<Reason::agentRestarted>},
      {Type::persistenceFailure, false, kRunning, cannotResume, false, suspend<Reason::persistenceFailure>},
      {Type::handoff, false, kRunning, cannotResume, false, suspend<Reason::handoff>},
      {Type::violation, false, kRunning, cannotResume, false, suspend<Reason::blockingViolation>},
      {Type::complete, false, kRunning, cannotResume, false, complete},
  }};

};

namespace {

constexpr bool transitionsFollowTypeOrder() {
  const auto& table = WorkingSessionTransitions::table;
  for (std::size_t index = 0; index < table.size(); ++index) {
    if (static_cast<std::size_t>(table[index].type) != index) return false;
  }
  return table.size() == EnumNames<Type>::table.size();
}
static_assert(transitionsFollowTypeOrder(), "one row per event type, in the type's order");

}  // namespace

bool WorkingSessionEngine::isValidIdentifier(std::string_view text) {
  if (text.empty() || text.size() > 128) return false;
  return std::ranges::all_of(text, [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == ':' || c == '-';
  });
}

std::expected<WorkingSessionEngine, WorkingSessionError> WorkingSessionEngine::make(std::string sessionID,
                                                                                    std::string deviceID,
                                                                                    WorkingSessionPolicy policy) {
  if (!isValidIdentifier(sessionID) || !isValidIdentifier(deviceID)) {
    return std::unexpected(refusal(WorkingSessionError::Kind::invalidIdentifier));
  }
  if (auto valid = policy.validate(); !valid) return std::unexpected(valid.error());
  return WorkingSessionEngine(std::move(sessionID), std::move(deviceID), std::move(policy));
}

std::expected<void, WorkingSessionError> WorkingSessionEngine::observe(const WorkingSessionEvent& event) {
  using ErrorKind = WorkingSessionError::Kind;
  if (state_ == State::completed) return std::unexpected(refusal(ErrorKind::alreadyCompleted));
  if (event.at < 0 || event.at > kWorkingLatestInstant ||
      (startedAtMS_ && event.at - *startedAtMS_ > kLongestSessionMS)) {
    return std::unexpected(refusal(ErrorKind::invalidClock));
  }
  if (lastObservedAtMS_ && event.at < *lastObservedAtMS_) {
    return std::unexpected(refusal(ErrorKind::clockMovedBackwards));
  }
  const auto& row = WorkingSessionTransitions::table[static_cast<std::size_t>(event.type)];
  if (state_ == State::preparing) {
    if (!row.acceptedWhilePreparing) return std::unexpected(refusal(ErrorKind::notStarted));
    return row.effect(*this, event);
  }
  if (row.acceptedWhileRunning == 0) return std::unexpected(refusal(row.refusal));
  if (row.sinceLastIsDowntime) {
    append(*lastObservedAtMS_, event.at, Kind::unverified);
    lastObservedAtMS_ = event.at;
  }
  advanceTo(event.at);
  if ((row.acceptedWhileRunning & bit(state_)) == 0) return std::unexpected(refusal(row.refusal));
  auto applied = row.effect(*this, event);
  refreshScheduledBreak();
  return applied;
}

void WorkingSessionEngine::advanceTo(UnixMillis at) {
  UnixMillis from = *lastObservedAtMS_;
  if (policy_.maximumObservationGapMS && checkedSub(at, from) > *policy_.maximumObservationGapMS) {
    // Nothing shows what happened in a gap this long.
    append(from, at, Kind::unverified);
    if (state_ != State::suspended) suspend(WorkingSuspensionReason::observationGap);
    from = at;
  }
  while (from < at) {
    applyClockDrivenChanges(from);
    const auto [kind, next] = classify(from, at);
    append(from, next, kind);
    from = next;
  }
  applyClockDrivenChanges(at);
  if (!offlineTransport()) lastVerifiedAtMS_ = at;
  lastObservedAtMS_ = at;
}

void WorkingSessionEngine::applyClockDrivenChanges(UnixMillis at) {
  const auto threshold = effectiveIdleThresholdMS();
  if (!threshold || !lastActivityAtMS_) return;
  // Possible idle lasts one more idle threshold before it becomes a break.
  if (state_ == State::active && at >= checkedAdd(*lastActivityAtMS_, *threshold)) state_ = State::possibleIdle;
  if (state_ == State::possibleIdle && at >= checkedAdd(*lastActivityAtMS_, checkedMul<std::int64_t>(*threshold, 2))) {
    state_ = State::autoBreak;
    restartResumeDebounce();
  }
}

std::pair<WorkingTimeSegment::Kind, UnixMillis> WorkingSessionEngine::classify(UnixMillis from,
                                                                               UnixMillis until) const {
  UnixMillis next = until;
  const auto boundary = [&](UnixMillis instant) {
    if (instant > from && instant < next) next = instant;
  };
  const auto threshold = effectiveIdleThresholdMS();
  if (policy_.pomodoro && policy_.pomodoro->breakMS > 0 && (state_ == State::active || state_ == State::possibleIdle)) {
    boundary(checkedAdd(from, pomodoroPosition(policy_, *startedAtMS_, from).phaseRemaining));
  }
  switch (state_) {
    case State::active: {
      if (threshold) boundary(checkedAdd(*lastActivityAtMS_, *threshold));
      const auto hardEnd = policy_.hardWindowMS ? std::optional(checkedAdd(*startedAtMS_, *policy_.hardWindowMS))
                                                : std::nullopt;
      if (hardEnd) boundary(*hardEnd);
      const UnixMillis offlineEnd = checkedAdd(*lastVerifiedAtMS_, workingMaximumOfflineMS);
      if (offlineTransport()) boundary(offlineEnd);
      if (hardEnd && from >= *hardEnd) return {Kind::unverified, next};
      if (inPomodoroBreak(from)) return {Kind::break_, next};
      if (offlineTransport()) return {from < offlineEnd ? Kind::provisional : Kind::unverified, next};
      return {Kind::active, next};
    }
    case State::possibleIdle:
      if (threshold) boundary(checkedAdd(*lastActivityAtMS_, checkedMul<std::int64_t>(*threshold, 2)));
      return {inPomodoroBreak(from) ? Kind::break_ : Kind::idle, next};
    case State::autoBreak:
    case State::manualBreak: return {Kind::break_, next};
    case State::suspended:
      return {suspensionReason_ == WorkingSuspensionReason::blockingViolation ? Kind::violation : Kind::unverified,
              next};
    case State::preparing:
    case State::completed: break;
  }
  return {Kind::unverified, next};
}

void WorkingSessionEngine::append(UnixMillis start, UnixMillis end, WorkingTimeSegment::Kind kind) {
  if (start >= end) return;
  if (!timeline_.empty() && timeline_.back().kind == kind && timeline_.back().endMS == start) {
    timeline_.back().endMS = end;
    return;
  }
  timeline_.push_back(WorkingTimeSegment{start, end, kind});
}

std::optional<std::int64_t> WorkingSessionEngine::effectiveIdleThresholdMS() const {
  if (passiveContinuityValid_ && policy_.passiveIdleThresholdMS) return policy_.passiveIdleThresholdMS;
  return policy_.idleThresholdMS;
}

bool WorkingSessionEngine::offlineTransport() const {
  return transport_ == WorkingTransportState::offlineLocal || transport_ == WorkingTransportState::reconnecting;
}

bool WorkingSessionEngine::inPomodoroBreak(UnixMillis at) const {
  return policy_.pomodoro && startedAtMS_ && !pomodoroPosition(policy_, *startedAtMS_, at).working;
}

void WorkingSessionEngine::suspend(WorkingSuspensionReason reason) {
  state_ = State::suspended;
  suspensionReason_ = reason;
  restartResumeDebounce();
}

void WorkingSessionEngine::resumeAt(UnixMillis at) {
  state_ = State::active;
  suspensionReason_.reset();
  manualBreakRequested_ = false;
  lastActivityAtMS_ = at;
  restartResumeDebounce();
}

void WorkingSessionEngine::restartResumeDebounce() {
  resumeActivityStartMS_.reset();
  resumeLastActivityMS_.reset();
}

void WorkingSessionEngine::settleProvisionalTime() {
  std::vector<WorkingTimeSegment> settled;
  settled.reserve(timeline_.size());
  for (WorkingTimeSegment segment : timeline_) {
    if (segment.kind == Kind::provisional) segment.kind = Kind::active;
    if (!settled.empty() && settled.back().kind == segment.kind && settled.back().endMS == segment.startMS) {
      settled.back().endMS = segment.endMS;
    } else {
      settled.push_back(segment);
    }
  }
  timeline_ = std::move(settled);
}

void WorkingSessionEngine::refreshScheduledBreak() {
  scheduledBreakActive_ = (state_ == State::active || state_ == State::possibleIdle) && inPomodoroBreak(*lastObservedAtMS_);
}

bool WorkingSessionEngine::pastHardWindow() const {
  return policy_.hardWindowMS && startedAtMS_ && *lastObservedAtMS_ >= checkedAdd(*startedAtMS_, *policy_.hardWindowMS);
}

bool WorkingSessionEngine::offlineBeyondLimit() const {
  return offlineTransport() && lastVerifiedAtMS_ &&
         *lastObservedAtMS_ >= checkedAdd(*lastVerifiedAtMS_, workingMaximumOfflineMS);
}

WorkingSessionSnapshot WorkingSessionEngine::snapshot() const {
  WorkingSessionSnapshot snapshot;
  snapshot.sessionID = sessionID_;
  snapshot.deviceID = deviceID_;
  snapshot.state = state_;
  snapshot.transport = transport_;
  snapshot.suspensionReason = suspensionReason_;
  snapshot.segments = timeline_;
  for (const WorkingTimeSegment& segment : timeline_) {
    const std::int64_t length = checkedSub(segment.endMS, segment.startMS);
    snapshot.elapsedMS = checkedAdd(snapshot.elapsedMS, length);
    switch (segment.kind) {
      case Kind::active: snapshot.candidateActiveMS = checkedAdd(snapshot.candidateActiveMS, length); break;
      case Kind::provisional:
        snapshot.candidateActiveMS = checkedAdd(snapshot.candidateActiveMS, length);
        snapshot.provisionalMS = checkedAdd(snapshot.provisionalMS, length);
        break;
      case Kind::idle: snapshot.idleMS = checkedAdd(snapshot.idleMS, length); break;
      case Kind::break_: snapshot.breakMS = checkedAdd(snapshot.breakMS, length); break;
      case Kind::unverified: snapshot.unverifiedMS = checkedAdd(snapshot.unverifiedMS, length); break;
      case Kind::violation: snapshot.violationMS = checkedAdd(snapshot.violationMS, length); break;
    }
  }
  if (lastPassiveObservationAtMS_) snapshot.passiveEligible = passiveObservation_.eligible;
  if (policy_.pomodoro && startedAtMS_ && state_ != State::completed) {
    const PomodoroPosition position = pomodoroPosition(policy_, *startedAtMS_, *lastObservedAtMS_);
    snapshot.pomodoroPhase = position.working ? WorkingSessionSnapshot::PomodoroPhase::pomodoroWork
                                              : WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak;
    snapshot.pomodoroRemainingMS = position.phaseRemaining;
    snapshot.pomodoroCycleIndex = position.cycleIndex;
  }
  return snapshot;
}

}  // namespace kovi
