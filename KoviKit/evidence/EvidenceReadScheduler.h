#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/evidence/EvidenceReadCursorStorage.h"
#include "KoviKit/evidence/HealthStepStatistics.h"

namespace kovi {

// Items handed out for one read, what reading them produced, and whether
// nothing follows them.
template <class Item, class Output>
struct EvidenceReadBatch {
  std::vector<Item> items;
  Output output{};
  bool reachedEnd = false;
};

// One scheduled read of one scope: the request for the batch's days and the
// marks that let the scheduler tell whether its commit still counts.
struct ScheduledHealthEvidenceRead {
  EvidenceReadScope scope;
  HealthEvidenceReadRequest request;
  // No candidate follows the batch's days.
  bool reachedEnd = false;
  std::uint64_t token = 0;
  std::uint64_t generation = 0;

  // Reads the batch's days from `store`.
  EvidenceReadBatch<HealthEvidenceDayWindow, HealthEvidenceReading> run(HealthEvidenceStore& store,
                                                                        const HealthSourcePriority& priority) const;
};

// Hands out the days of a scope to read, a batch at a time, after the last
// day the scope's cursor records, and keeps two reads of one scope from
// running at once. A day's item ID is its day index in decimal.
//
// `begin` marks the scope in flight; `commit` stores the batch's last day as
// the cursor and clears the mark; `abandon` clears the mark and stores
// nothing (a read whose days failed should be abandoned, so they are offered
// again). A change of owner clears every mark and moves `generation` on, so a
// read begun for the earlier owner stores nothing when it commits.
class EvidenceReadScheduler {
 public:
  static constexpr std::size_t kDefaultBatchSize = 7;

  EvidenceReadScheduler(EvidenceReadCursorStorage& storage, std::optional<std::string> ownerID,
                        std::size_t batchSize = kDefaultBatchSize);

  void changeOwner(std::optional<std::string> ownerID);
  std::uint64_t generation() const;

  // Fails with `invalidScope` (a scope that cannot own a cursor, or not of
  // the signed-in account), `invalidCandidates` (days not in strictly rising
  // order, a negative day, an empty window), `noCandidates`,
  // `readInProgress`, or what loading the cursor fails with;
  // `invalidStoredCursor` when the stored last day is not among the
  // candidates.
  std::expected<ScheduledHealthEvidenceRead, EvidenceReadFailure> begin(
      const EvidenceReadScope& scope, const std::vector<HealthEvidenceDayWindow>& candidates,
      UnixMillis observationCutoff, std::optional<bool> authorizationRequestCompleted = std::nullopt);

  // True when the cursor now stands after the batch (or the batch was empty);
  // false when the read no longer counts (another owner since, or abandoned)
  // and nothing was stored.
  std::expected<bool, EvidenceReadFailure> commit(const ScheduledHealthEvidenceRead& read);
  void abandon(const ScheduledHealthEvidenceRead& read);

 private:
  bool holdsMark(const ScheduledHealthEvidenceRead& read) const;

  EvidenceReadCursorStorage& storage_;
  std::size_t batchSize_;
  mutable std::mutex mutex_;
  std::optional<std::string> ownerID_;
  std::uint64_t generation_ = 1;
  std::uint64_t nextToken_ = 1;
  // Scope digest -> the token of the read in flight.
  std::map<std::string, std::uint64_t> inFlight_;
};

}  // namespace kovi
