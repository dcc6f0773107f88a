#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"

#include <algorithm>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

using Verdict = WalkingEvidenceVerdict;
using SanitizedDay = WalkingEvidenceBuckets::SanitizedDay;

constexpr UnixMillis kHourMillis = 60 * 60 * 1000;

// Walks the closed buckets in day and start order and notes where the running
// sum first reaches the target.
void trackFirstToTarget(WalkingEvidenceEvaluation& evaluation, const SanitizedDay& day, double& runningSum,
                        std::int64_t target) {
  if (evaluation.reachedAt) return;
  for (const HealthEvidenceBucket& bucket : day.buckets) {
    if (bucket.provisional) continue;
    runningSum += bucket.amount;
    if (runningSum >= static_cast<double>(target)) {
      evaluation.reachedAt = bucket.end.unixMillis();
      evaluation.reachedDay = day.window.day;
      return;
    }
  }
}

// `undecidedDays` counts the days that may still change: not begun, still
// running, provisional, or missing while the verification window is open.
Verdict judge(const WalkingKoviRules& rules, const WalkingEvidenceEvaluation& evaluation, std::size_t dayCount,
              int undecidedDays, bool evidenceClosed) {
  const bool settled = evidenceClosed || undecidedDays == 0;
  const auto target = rules.stepTarget;
  const double total = evaluation.closedTotal;
  if (rules.isDailyGoal() && target) {
    const int required = rules.requiredSuccessfulDays.value_or(static_cast<int>(dayCount));
    if (evaluation.successfulDays >= required) return Verdict::met;
    if (evidenceClosed || evaluation.successfulDays + undecidedDays < required) return Verdict::failed;
    return Verdict::open;
  }
  if (rules.isTotalGoal() && target) {
    if (total >= static_cast<double>(*target)) return Verdict::met;
    return settled ? Verdict::failed : Verdict::open;
  }
  if (rules.isRace(WalkingKoviRules::RaceMode::firstToTarget) && target) {
    if (evaluation.reachedAt) return Verdict::met;
    return settled ? Verdict::failed : Verdict::open;
  }
  if (rules.isRace(WalkingKoviRules::RaceMode::highestTotal)) {
    if (!rules.minimumEligibility) return settled ? Verdict::met : Verdict::open;
    if (total >= static_cast<double>(*rules.minimumEligibility)) return Verdict::met;
    return settled ? Verdict::failed : Verdict::open;
  }
  return Verdict::open;
}

}  // namespace

WalkingEvidenceEvaluation WalkingEvidenceEvaluation::evaluate(const WalkingKoviRules& rules,
                                                              std::span<const HealthEvidenceDayWindow> windows,
                                                              std::span<const SanitizedDay> sanitized,
                                                              UnixMillis now) {
  WalkingEvidenceEvaluation evaluation;
  if (!windows.empty()) {
    const auto grace = checkedMul(static_cast<UnixMillis>(std::max(0, rules.verificationWindowHours)), kHourMillis);
    evaluation.evidenceClosesAt = checkedAdd(windows.back().end, grace);
  }
  const bool evidenceClosed = !windows.empty() && now >= evaluation.evidenceClosesAt;
  std::map<int, const SanitizedDay*> readDays;
  for (const SanitizedDay& day : sanitized) readDays.emplace(day.window.day, &day);

  int undecidedDays = 0;
  double runningSum = 0;
  const bool racesToTarget = rules.isRace(WalkingKoviRules::RaceMode::firstToTarget) && rules.stepTarget;
  for (const HealthEvidenceDayWindow& window : windows) {
    if (window.start >= now) {
      // Not begun, so without a usable value: missing, and also upcoming.
      evaluation.missingDays.push_back(window.day);
      evaluation.upcomingDays.push_back(window.day);
      ++undecidedDays;
      continue;
    }
    const auto found = readDays.find(window.day);
    const SanitizedDay* day = found == readDays.end() ? nullptr : found->second;
    if (day) evaluation.days.emplace(window.day, day->value());
    if (!day || day->outcome != HealthEvidenceReadOutcome::measured) {
      evaluation.missingDays.push_back(window.day);
      if (!evidenceClosed) ++undecidedDays;
      continue;
    }
    if (day->provisional) evaluation.provisionalDays.push_back(window.day);
    evaluation.closedTotal += day->closedTotal;
    if (rules.stepTarget && day->closedTotal >= static_cast<double>(*rules.stepTarget)) {
      ++evaluation.successfulDays;
    } else if (day->provisional || window.end > now) {
      ++undecidedDays;
    }
    if (racesToTarget) trackFirstToTarget(evaluation, *day, runningSum, *rules.stepTarget);
  }
  evaluation.verdict = judge(rules, evaluation, windows.size(), undecidedDays, evidenceClosed);
  return evaluation;
}

}  // namespace kovi
