#include "KoviKit/evidence/V6WalkingSyncPlanner.h"

#include <algorithm>

#include "KoviKit/evidence/WalkingDayWindowVerifier.h"

namespace kovi {
namespace {

using Planner = V6WalkingSyncPlanner;

std::expected<void, WalkingEvidenceError> verifyWindows(const V6WalkingContext& context) {
  if (context.windows.empty()) {
    return std::unexpected(
        WalkingEvidenceError{std::string(walkingErrorCode::dayWindowsInvalid), "the context has no day windows"});
  }
  const UnixMillis start = context.windows.front().start;
  for (const auto& serverWindows : {std::optional(context.windows), WalkingDayWindowVerifier::serverWindows(context.rules)}) {
    if (!serverWindows) continue;
    auto verified = WalkingDayWindowVerifier::review(context.rules, start, serverWindows).windowsForEvidence();
    if (!verified) return std::unexpected(verified.error());
  }
  return {};
}

Planner::DayOutcome planDay(const V6WalkingContext& context, const HealthEvidenceDayWindow& window,
                            const HealthEvidenceDayRead* read, UnixMillis cutoff) {
  if (!read) {
    return Planner::NoData{{std::string(walkingErrorCode::noReadableData),
                            "day " + std::to_string(window.day) + " has not been read"}};
  }
  if (read->outcome == HealthEvidenceReadOutcome::noReadableData) return Planner::NoData{readOutcomeError(read->outcome)};
  if (read->outcome != HealthEvidenceReadOutcome::measured) return Planner::Failed{readOutcomeError(read->outcome)};

  auto day = WalkingEvidenceBuckets::sanitize(window, read->outcome, read->buckets, cutoff);
  if (!day) return Planner::Failed{day.error()};
  auto observation = V6WalkingObservation::fromDay(*day, cutoff);
  if (!observation) return Planner::NoData{observation.error()};

  std::string payloadHash = observation->payloadHash();
  const V6WalkingContext::Revision* revision = context.revisionOf(window.day);
  if (revision && sameHexDigest(revision->payloadHash, payloadHash)) return Planner::Unchanged{};
  return Planner::Submit{{window.day, revision ? revision->revision : 0, std::move(*observation)},
                         std::move(payloadHash)};
}

}  // namespace

std::expected<std::vector<V6WalkingSyncPlanner::DayPlan>, WalkingEvidenceError> V6WalkingSyncPlanner::plan(
    const V6WalkingContext& context, const std::vector<HealthEvidenceDayRead>& reads, UnixMillis cutoff) {
  if (auto hash = context.verifyRulesHash(); !hash) return std::unexpected(hash.error());
  if (auto windows = verifyWindows(context); !windows) return std::unexpected(windows.error());
  std::vector<DayPlan> plans;
  plans.reserve(context.windows.size());
  for (const HealthEvidenceDayWindow& window : context.windows) {
    plans.push_back({window.day, planDay(context, window, findDayRead(reads, window.day), cutoff)});
  }
  return plans;
}

V6WalkingSyncPlanner::WriterDecision V6WalkingSyncPlanner::writerDecision(const std::optional<std::string>& writerKeyId,
                                                                          std::string_view currentKeyId,
                                                                          std::span<const std::string> replacedKeyIds) {
  // No writer yet: the first signed submission makes this device the writer.
  if (!writerKeyId || *writerKeyId == currentKeyId) return WriterDecision::sign;
  if (std::ranges::find(replacedKeyIds, *writerKeyId) != replacedKeyIds.end()) {
    return WriterDecision::transferFromOwnReplacedKey;
  }
  return WriterDecision::otherDevice;
}

}  // namespace kovi
