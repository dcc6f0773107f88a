#include "KoviKit/working/WorkingRuleSummary.h"

#include "KoviKit/working/WorkingRuleLimits.h"
#include "KoviKit/working/WorkingSummaryTexts.h"

namespace kovi {
namespace {

using Rules = WorkingRules;
using Value = WorkingSummaryValue;
namespace text = workingsummary;

class SummaryBuilder {
 public:
  explicit SummaryBuilder(const Rules& rules) : rules_(rules) {}

  std::vector<WorkingSummaryLine> build() && {
    add(text::consentBinding);
    goal();
    progressMeasure();
    calendar();
    race();
    payouts();
    fallback();
    leaving();
    session();
    verification();
    breaks();
    blocking();
    manualEntry();
    privacy();
    return std::move(lines_);
  }

 private:
  void add(const WorkingSummaryText& line, std::vector<Value> values = {}) {
    lines_.push_back(WorkingSummaryLine{&line, std::move(values)});
  }

  const std::string& zone() const { return rules_.calendar.timezone; }

  void goal() {
    const auto& goal = rules_.goal;
    // Validation guarantees the targets each kind needs are set.
    switch (goal.kind) {
      case Rules::GoalKind::daily:
        add(text::dailyTarget, {Value::duration(*goal.dailyTargetSeconds)});
        requiredDays();
        break;
      case Rules::GoalKind::dailyAndTotal:
        add(text::bothConditions, {Value::duration(*goal.totalTargetSeconds)});
        add(text::dailyCondition, {Value::duration(*goal.dailyTargetSeconds)});
        requiredDays();
        break;
      case Rules::GoalKind::total: add(text::totalTarget, {Value::duration(*goal.totalTargetSeconds)}); break;
      case Rules::GoalKind::singleSession:
        add(text::singleSessionTarget, {Value::duration(*goal.totalTargetSeconds)});
        break;
      case Rules::GoalKind::scheduled:
        add(text::scheduledTarget, {Value::count(static_cast<std::int64_t>(rules_.calendar.windows.size()))});
        windows();
        break;
      case Rules::GoalKind::sprint:
        add(text::sprintTarget, {Value::duration(*goal.totalTargetSeconds)});
        add(text::sprintBoth);
        windows();
        break;
    }
  }

  void requiredDays() {
    const auto dayCount = static_cast<std::int64_t>(rules_.calendar.days.size());
    const std::int64_t required = *rules_.goal.requiredSuccessfulDays;
    if (required == dayCount) {
      add(text::requiredAllDays, {Value::count(dayCount)});
    } else {
      add(text::requiredSomeDays, {Value::count(dayCount), Value::count(required)});
    }
  }

  void windows() {
    std::int64_t number = 0;
    for (const auto& window : rules_.calendar.windows) {
      add(text::windowLine, {Value::count(++number), Value::instant(window.start, zone()),
                             Value::instant(window.end, zone()), Value::duration(window.targetSeconds)});
    }
  }

  void progressMeasure() {
    const bool singleSession = rules_.session.fragmentation == Rules::Fragmentation::singleSession;
    switch (rules_.goal.kind) {
      case Rules::GoalKind::daily: add(text::measureBestDays); break;
      case Rules::GoalKind::dailyAndTotal: add(text::measureBestDaysAndTotal); break;
      case Rules::GoalKind::total: add(singleSession ? text::measureBestSession : text::measureTotal); break;
      case Rules::GoalKind::singleSession: add(text::measureBestSession); return;
      case Rules::GoalKind::scheduled:
        add(singleSession ? text::measureWindowsBestSession : text::measureWindowsAccumulated);
        break;
      case Rules::GoalKind::sprint: add(text::measureSprint); break;
    }
    if (rules_.goal.kind != Rules::GoalKind::total) add(text::capNoCarry);
  }

  void calendar() {
    const auto& calendar = rules_.calendar;
    add(text::countingSpan);
    add(calendar.dayBoundary == Rules::CalendarPolicy::DayBoundary::anchored ? text::anchoredDays
                                                                              : text::calendarDays);
    add(text::timeZone, {Value::verbatim(zone())});
    std::int64_t number = 0;
    for (const auto& day : calendar.days) {
      add(text::dayLine, {Value::count(++number), Value::instant(day.start, zone()), Value::instant(day.end, zone()),
                          Value::duration((day.end - day.start) / 1000)});
    }
    if (!calendar.makeupAllowed) add(text::noMakeup);
  }

  void race() {
    const auto& race = rules_.race;
    switch (race.kind) {
      case Rules::RaceKind::none: return;
      case Rules::RaceKind::highestTotal: add(text::raceHighestTotal); break;
      case Rules::RaceKind::firstToTarget:
        add(text::raceFirstToTarget, {Value::duration(*race.targetSeconds)});
        add(text::raceTieBucket, {Value::duration(race.tieBucketSeconds)});
        break;
      case Rules::RaceKind::consistency: add(text::raceConsistency); break;
      case Rules::RaceKind::streak: add(text::raceStreak); break;
      case Rules::RaceKind::efficiency:
        add(text::raceEfficiency);
        add(text::raceEfficiencyTarget, {Value::duration(*race.targetSeconds)});
        if (race.efficiencyTieBreak == Rules::Race::EfficiencyTieBreak::earliestTarget) {
          add(text::raceEarliestTarget);
          add(text::raceTieBucket, {Value::duration(race.tieBucketSeconds)});
        }
        break;
    }
    if (race.minimumEligibilitySeconds > 0) {
      add(text::raceEligibility, {Value::duration(race.minimumEligibilitySeconds)});
    }
  }

  void payouts() {
    const auto& economics = rules_.economics;
    if (economics.payout == Rules::Payout::equalSuccessful) {
      add(text::equalShares);
      add(text::successByTarget);
      return;
    }
    if (economics.rankPayoutsBps == std::vector<std::int64_t>{kWorkingWholePoolBps}) {
      add(text::winnerTakesAll);
      return;
    }
    std::vector<WorkingSummaryLine> shares;
    std::int64_t rank = 0;
    for (const std::int64_t share : economics.rankPayoutsBps) {
      shares.push_back({&text::rankShare, {Value::count(++rank), Value::percent(share)}});
    }
    add(text::rankShares, {Value::phraseList(std::move(shares))});
    add(text::rankTiesShare);
    add(text::rankUndistributed);
  }

  void fallback() {
    const WorkingSummaryText& condition =
        rules_.race.kind == Rules::RaceKind::none ? text::nobodySuccessful : text::nobodyEligible;
    const Value when = Value::phraseList({WorkingSummaryLine{&condition, {}}});
    switch (rules_.economics.fallback) {
      case Rules::Fallback::closestToTarget: add(text::fallbackClosest, {when}); break;
      case Rules::Fallback::refund: add(text::fallbackRefund, {when}); break;
      case Rules::Fallback::rollover:
        add(text::fallbackRollover, {when});
        add(text::rolloverAgreement);
        break;
    }
  }

  void leaving() {
    const auto& economics = rules_.economics;
    if (economics.funding == Rules::Funding::free) {
      add(text::exitFree);
    } else {
      add(text::exitPenalty, {Value::percent(economics.exitPenaltyBps)});
      add(text::exitRefund, {Value::percent(kWorkingWholePoolBps - economics.exitPenaltyBps)});
    }
    add(text::sessionEndIsNotLeaving);
  }

  void session() {
    const auto& session = rules_.session;
    if (session.minimumSeconds > 0) add(text::minimumSession, {Value::duration(session.minimumSeconds)});
    if (session.fragmentation == Rules::Fragmentation::singleSession) add(text::singleSessionOnly);
    if (session.restSeconds > 0) add(text::restBetweenSessions, {Value::duration(session.restSeconds)});
    if (session.continuity == Rules::Continuity::flexible) add(text::flexibleContinuity);
    if (!session.handoffPreservesContinuity) add(text::handoffBreaksContinuity);
    if (session.completion == Rules::Session::Completion::continue_) add(text::continueAfterTarget);
    if (session.lateJoin == Rules::Session::LateJoin::fullTarget) add(text::lateJoinFullTarget);
    if (session.lateJoin == Rules::Session::LateJoin::remainingWindow) add(text::lateJoinRemainingWindow);
  }

  void verification() {
    const auto& verification = rules_.verification;
    add(text::notCounted);
    add(verification.macRequired ? text::macVerifies : text::macNotRequired);
    if (verification.strictness == Rules::Strictness::timerOnly) add(text::timerOnly);
    add(verification.permissionLoss == Rules::PermissionLoss::pause ? text::permissionLossPauses
                                                                    : text::permissionLossUnverified);
    add(text::partialSegments);
    if (verification.graceSeconds > 0) {
      add(text::lateRecords, {Value::duration(verification.graceSeconds)});
    } else {
      add(text::noLateRecords);
    }
  }

  void breaks() {
    const auto& breaks = rules_.breaks;
    std::vector<WorkingSummaryLine> limits;
    auto limit = [&](const std::optional<std::int64_t>& seconds, const WorkingSummaryText& phrase) {
      if (seconds) limits.push_back({&phrase, {Value::duration(*seconds)}});
    };
    limit(breaks.maximumPerSessionSeconds, text::breakPerSession);
    limit(breaks.maximumPerDaySeconds, text::breakPerDay);
    limit(breaks.maximumPerBreakSeconds, text::breakPerBreak);
    if (limits.empty()) {
      add(text::noBreakLimits);
    } else {
      add(text::breakLimits, {Value::phraseList(std::move(limits))});
      overrun();
    }
    if (!breaks.manualAllowed) add(text::manualBreaksForbidden);
  }

  void overrun() {
    switch (rules_.breaks.overrun) {
      case Rules::BreakOverrun::invalidateSession: add(text::overrunInvalidates); break;
      case Rules::BreakOverrun::warning: add(text::overrunWarns); break;
      case Rules::BreakOverrun::extendElapsed: add(text::overrunExtends); break;
      case Rules::BreakOverrun::penalty:
        add(text::overrunPenalty);
        add(text::overrunPenaltySeparate);
        break;
    }
  }

  void blocking() {
    const auto& bypass = rules_.blocking.bypass;
    add(text::bypassNeverCounts);
    switch (bypass.consequence) {
      case Rules::BypassConsequence::invalidateSession: add(text::bypassInvalidates); break;
      case Rules::BypassConsequence::excludeTime: add(text::bypassExcludesTime); break;
      case Rules::BypassConsequence::failDay:
        add(text::bypassFailsDay, {Value::count(*bypass.violationsToFailDay)});
        break;
    }
    if (bypass.mode == Rules::BypassMode::limited) {
      add(text::limitedBypass, {Value::count(bypass.usesPerSession), Value::duration(bypass.secondsPerUse)});
      add(text::limitedBypassReturns);
    }
    if (bypass.mode == Rules::BypassMode::emergency || bypass.emergencyAlwaysAvailable) add(text::emergencyExit);
  }

  // Group approval of manual work is a free-kovi rule; a funded kovi never
  // takes hand-entered time.
  void manualEntry() {
    const bool groupApproval = rules_.economics.manualEntry == Rules::ManualEntry::groupApproval &&
                               rules_.economics.funding == Rules::Funding::free;
    add(groupApproval ? text::manualEntryGroupApproval : text::manualEntryForbidden);
  }

  void privacy() {
    const auto& privacy = rules_.privacy;
    add(text::listsStayOnDevice);
    add(text::nothingRecorded);
    switch (privacy.presence) {
      case Rules::Privacy::Presence::progressOnly: add(text::presenceProgressOnly); break;
      case Rules::Privacy::Presence::activeStatus: add(text::presenceActiveStatus); break;
      case Rules::Privacy::Presence::hidden: add(text::presenceHidden); break;
    }
    if (!privacy.exactDuration) add(text::exactDurationHidden);
    add(text::finalTotalsShown);
  }

  const Rules& rules_;
  std::vector<WorkingSummaryLine> lines_;
};

}  // namespace

std::vector<WorkingSummaryLine> summarizeWorkingRules(const WorkingRules& rules) {
  return SummaryBuilder(rules).build();
}

std::vector<std::string> renderWorkingSummary(const std::vector<WorkingSummaryLine>& lines,
                                              WorkingSummaryLanguage language) {
  std::vector<std::string> rendered;
  rendered.reserve(lines.size());
  for (const WorkingSummaryLine& line : lines) rendered.push_back(line.render(language));
  return rendered;
}

}  // namespace kovi
