#include "KoviKit/evidence/WalkingProgressSummary.h"

#include <algorithm>

namespace kovi {
namespace {

const HealthEvidenceDayWindow* windowAt(std::span<const HealthEvidenceDayWindow> windows, UnixMillis instant) {
  const auto found = std::ranges::find_if(
      windows, [&](const HealthEvidenceDayWindow& window) { return window.start <= instant && instant < window.end; });
  return found == windows.end() ? nullptr : &*found;
}

bool isMeasured(const WalkingEvidenceDayValue& value) { return value.outcome == HealthEvidenceReadOutcome::measured; }

std::optional<double> stepsSoFar(const WalkingEvidenceEvaluation& evaluation) {
  std::optional<double> steps;
  for (const auto& [day, value] : evaluation.days) {
    if (isMeasured(value)) steps = steps.value_or(0) + value.total;
  }
  return steps;
}

std::optional<double> stepsOfDay(const WalkingEvidenceEvaluation& evaluation, const HealthEvidenceDayWindow* window) {
  if (!window) return std::nullopt;
  const auto found = evaluation.days.find(window->day);
  if (found == evaluation.days.end() || !isMeasured(found->second)) return std::nullopt;
  return found->second.total;
}

}  // namespace

WalkingProgressSummary WalkingProgressSummary::summarize(const WalkingKoviRules& rules, UnixMillis koviStart,
                                                         std::span<const HealthEvidenceDayWindow> windows,
                                                         const WalkingEvidenceEvaluation& evaluation, UnixMillis now,
                                                         std::optional<Stored> stored) {
  const HealthEvidenceDayWindow* today = windowAt(windows, now);
  WalkingProgressSummary summary;
  summary.isDaily = rules.isDailyGoal();
  summary.target = rules.stepTarget;
  summary.steps = summary.isDaily ? stepsOfDay(evaluation, today) : stepsSoFar(evaluation);
  if (today) summary.dayEndsAt = today->end;
  summary.waitsForFirstDay = !windows.empty() && koviStart <= now && now < windows.front().start;
  summary.needsDayRefresh = stored && needsRefresh(*stored, windows, now);
  return summary;
}

bool WalkingProgressSummary::needsRefresh(const Stored& stored, std::span<const HealthEvidenceDayWindow> windows,
                                          UnixMillis now) {
  if (stored.dayEndsAt && now >= *stored.dayEndsAt) return true;
  const HealthEvidenceDayWindow* today = windowAt(windows, now);
  return today && stored.progressAt < today->start;
}

}  // namespace kovi
