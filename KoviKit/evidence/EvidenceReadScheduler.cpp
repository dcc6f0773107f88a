#include "KoviKit/evidence/EvidenceReadScheduler.h"

#include <algorithm>

namespace kovi {
namespace {

std::string itemID(const HealthEvidenceDayWindow& window) { return std::to_string(window.day); }

std::optional<std::string> candidatesProblem(const std::vector<HealthEvidenceDayWindow>& candidates) {
  for (std::size_t index = 0; index < candidates.size(); ++index) {
    const auto& window = candidates[index];
    if (window.day < 0) return "day " + std::to_string(window.day) + " is negative";
    if (window.end <= window.start) return "day " + std::to_string(window.day) + " has an empty window";
    if (index > 0 && candidates[index - 1].day >= window.day) return "days are not in strictly rising order";
  }
  return std::nullopt;
}

EvidenceReadFailure refusal(EvidenceReadError error, std::string detail) { return {error, std::move(detail)}; }

}  // namespace

EvidenceReadBatch<HealthEvidenceDayWindow, HealthEvidenceReading> ScheduledHealthEvidenceRead::run(
    HealthEvidenceStore& store, const HealthSourcePriority& priority) const {
  return {request.days, readHealthEvidence(store, request, priority), reachedEnd};
}

EvidenceReadScheduler::EvidenceReadScheduler(EvidenceReadCursorStorage& storage, std::optional<std::string> ownerID,
                                             std::size_t batchSize)
    : storage_(storage), batchSize_(std::max<std::size_t>(batchSize, 1)), ownerID_(std::move(ownerID)) {}

void EvidenceReadScheduler::changeOwner(std::optional<std::string> ownerID) {
  std::lock_guard lock(mutex_);
  ownerID_ = std::move(ownerID);
  ++generation_;
  inFlight_.clear();
}

std::uint64_t EvidenceReadScheduler::generation() const {
  std::lock_guard lock(mutex_);
  return generation_;
}

std::expected<ScheduledHealthEvidenceRead, EvidenceReadFailure> EvidenceReadScheduler::begin(
    const EvidenceReadScope& scope, const std::vector<HealthEvidenceDayWindow>& candidates,
    UnixMillis observationCutoff, std::optional<bool> authorizationRequestCompleted) {
  std::lock_guard lock(mutex_);
  if (auto reason = scope.invalidReason()) return std::unexpected(refusal(EvidenceReadError::invalidScope, *reason));
  if (ownerID_ != scope.ownerID) {
    return std::unexpected(refusal(EvidenceReadError::invalidScope, "the scope is not the signed-in account's"));
  }
  if (auto problem = candidatesProblem(candidates)) {
    return std::unexpected(refusal(EvidenceReadError::invalidCandidates, *problem));
  }
  if (candidates.empty()) return std::unexpected(refusal(EvidenceReadError::noCandidates, "no days to read"));
  const std::string key = scope.digest();
  if (inFlight_.contains(key)) {
    return std::unexpected(refusal(EvidenceReadError::readInProgress, "a read of this scope is in flight"));
  }

  auto stored = storage_.loadRecord(scope);
  if (!stored) return std::unexpected(stored.error());
  auto first = candidates.begin();
  if (*stored) {
    const auto found = std::ranges::find_if(
        candidates, [&](const HealthEvidenceDayWindow& window) { return itemID(window) == (*stored)->lastItemID; });
    if (found == candidates.end()) {
      return std::unexpected(refusal(EvidenceReadError::invalidStoredCursor,
                                     "the stored last day " + (*stored)->lastItemID + " is not among the candidates"));
    }
    first = std::next(found);
  }
  const auto count = std::min<std::size_t>(batchSize_, static_cast<std::size_t>(candidates.end() - first));
  ScheduledHealthEvidenceRead read;
  read.scope = scope;
  read.request = {std::vector(first, first + static_cast<std::ptrdiff_t>(count)), observationCutoff,
                  authorizationRequestCompleted};
  read.reachedEnd = first + static_cast<std::ptrdiff_t>(count) == candidates.end();
  read.token = nextToken_++;
  read.generation = generation_;
  inFlight_.emplace(key, read.token);
  return read;
}

bool EvidenceReadScheduler::holdsMark(const ScheduledHealthEvidenceRead& read) const {
  if (read.generation != generation_) return false;
  const auto mark = inFlight_.find(read.scope.digest());
  return mark != inFlight_.end() && mark->second == read.token;
}

std::expected<bool, EvidenceReadFailure> EvidenceReadScheduler::commit(const ScheduledHealthEvidenceRead& read) {
  std::lock_guard lock(mutex_);
  if (!holdsMark(read)) return false;
  inFlight_.erase(read.scope.digest());
  if (read.request.days.empty()) return true;
  const EvidenceReadCursorStorage::Record record{EvidenceReadCursorStorage::kVersion, read.scope,
                                                 itemID(read.request.days.back())};
  if (auto saved = storage_.saveRecord(record); !saved) return std::unexpected(saved.error());
  return true;
}

void EvidenceReadScheduler::abandon(const ScheduledHealthEvidenceRead& read) {
  std::lock_guard lock(mutex_);
  if (holdsMark(read)) inFlight_.erase(read.scope.digest());
}

}  // namespace kovi
