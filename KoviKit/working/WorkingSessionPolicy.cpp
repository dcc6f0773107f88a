#include "KoviKit/working/WorkingSessionPolicy.h"

#include <algorithm>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/working/WorkingRuleLimits.h"
#include "KoviKit/working/WorkingSessionReadiness.h"

namespace kovi {
namespace {

// The longest duration any rule may state: 366 days.
constexpr std::int64_t kLongestDurationMS = kWorkingLongestKoviMillis;

// Every pomodoro phase splits the timeline, so a session of the longest
// length must stay a few hundred thousand segments at most.
constexpr std::int64_t kShortestPomodoroPhaseMS = 60'000;

std::int64_t milliseconds(std::int64_t seconds) { return checkedMul<std::int64_t>(seconds, 1000); }

std::optional<std::int64_t> milliseconds(const std::optional<std::int64_t>& seconds) {
  if (!seconds) return std::nullopt;
  return milliseconds(*seconds);
}

bool inRange(std::int64_t duration, std::int64_t minimum) {
  return duration >= minimum && duration <= kLongestDurationMS;
}

bool inRange(const std::optional<std::int64_t>& duration, std::int64_t minimum) {
  return !duration || inRange(*duration, minimum);
}

}  // namespace

std::expected<WorkingSessionPolicy, WorkingSessionError> WorkingSessionPolicy::fromRules(const WorkingRules& rules) {
  const auto& verification = rules.verification;
  const auto& mac = rules.blocking.mac;
  const auto& iphone = rules.blocking.iphone;
  WorkingSessionPolicy policy;
  policy.idleThresholdMS = milliseconds(verification.idleThresholdSeconds);
  policy.allowsIdleDisabled = verification.strictness == WorkingRules::Strictness::flexible ||
                              verification.strictness == WorkingRules::Strictness::timerOnly;
  policy.resumeMode =
      verification.resume == WorkingRules::Resume::automatic ? ResumeMode::automatic : ResumeMode::confirmation;
  policy.resumeDebounceMS = milliseconds(verification.resumeDebounceSeconds);
  policy.resumeMaximumInputGapMS =
      milliseconds(std::min(verification.heartbeatSeconds, verification.resumeDebounceSeconds));
  policy.hardWindowMS = milliseconds(rules.session.hardWindowSeconds);
  policy.maximumObservationGapMS = milliseconds(checkedAdd(verification.heartbeatSeconds, verification.graceSeconds));
  policy.requiresAppBlocking = mac.apps.required;
  policy.requiresWebsiteBlocking = mac.websites.required;
  policy.requiresPhoneProtection = (iphone.apps.required || iphone.websites.required) &&
                                   rules.blocking.iphoneEnforcement != WorkingRules::IPhoneEnforcement::auxiliary;
  policy.requiresServerLease = rules.economics.funding == WorkingRules::Funding::funded;
  if (verification.passive.allowed) policy.passiveIdleThresholdMS = milliseconds(verification.passive.idleThresholdSeconds);
  if (rules.session.pomodoro) {
    policy.pomodoro = Pomodoro{milliseconds(rules.session.pomodoro->workSeconds),
                               milliseconds(rules.session.pomodoro->breakSeconds)};
  }
  if (auto valid = policy.validate(); !valid) return std::unexpected(valid.error());
  return policy;
}

std::expected<void, WorkingSessionError> WorkingSessionPolicy::validate() const {
  const bool durationsValid =
      inRange(idleThresholdMS, 1) && inRange(resumeDebounceMS, 1) && inRange(resumeMaximumInputGapMS, 1) &&
      inRange(hardWindowMS, 1) && inRange(maximumObservationGapMS, 1) && inRange(passiveIdleThresholdMS, 1) &&
      inRange(pomodoroOffsetMS, 0) &&
      (!pomodoro || (inRange(pomodoro->workMS, kShortestPomodoroPhaseMS) &&
                     (pomodoro->breakMS == 0 || inRange(pomodoro->breakMS, kShortestPomodoroPhaseMS))));
  if (!durationsValid || (!idleThresholdMS && !allowsIdleDisabled)) {
    return std::unexpected(WorkingSessionError{WorkingSessionError::Kind::invalidPolicy, {}});
  }
  return {};
}

std::vector<WorkingSuspensionReason> workingBlockingReasons(const WorkingSessionPolicy& policy,
                                                            const WorkingSessionReadiness& readiness) {
  using Reason = WorkingSuspensionReason;
  // One row per readiness flag, in the reasons' order: whether it blocks
  // (a protection the policy does not ask for never does) and its reason.
  const std::array<std::pair<bool, Reason>, 7> blockers{{
      {!readiness.activityMonitoring, Reason::activityUnavailable},
      {!readiness.deviceUnlocked, Reason::locked},
      {!readiness.displayAwake, Reason::displaySleeping},
      {policy.requiresAppBlocking && !readiness.appBlocking, Reason::appBlockingUnavailable},
      {policy.requiresWebsiteBlocking && !readiness.websiteBlocking, Reason::websiteBlockingUnavailable},
      {policy.requiresPhoneProtection && !readiness.phoneProtection, Reason::phoneProtectionUnavailable},
      {policy.requiresServerLease && !readiness.serverLease, Reason::leaseUnavailable},
  }};
  std::vector<Reason> reasons;
  for (const auto& [blocks, reason] : blockers) {
    if (blocks) reasons.push_back(reason);
  }
  return reasons;
}

}  // namespace kovi
