#include "KoviKit/evidence/HealthStepStatistics.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

#include "KoviKit/evidence/WalkingEvidenceBuckets.h"
#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

constexpr UnixMillis kBucketMillis = WalkingEvidenceBucketModel::kBucketMillis;
// Calendar days are 23 to 25 hours long; anything beyond two days is not a
// day window and would only make the bucket table large.
constexpr UnixMillis kLongestWindowMillis = 48LL * 3600 * 1000;

// The time already counted, as disjoint [start, end) intervals keyed by start.
class CoveredTime {
 public:
  // The parts of [start, end) not yet covered, then covers all of it.
  std::vector<std::pair<UnixMillis, UnixMillis>> claim(UnixMillis start, UnixMillis end) {
    std::vector<std::pair<UnixMillis, UnixMillis>> uncovered;
    auto it = intervals_.upper_bound(start);
    if (it != intervals_.begin() && std::prev(it)->second > start) --it;
    UnixMillis cursor = start;
    UnixMillis mergedStart = start;
    UnixMillis mergedEnd = end;
    while (it != intervals_.end() && it->first <= end) {
      if (it->first > cursor) uncovered.emplace_back(cursor, std::min(it->first, end));
      cursor = std::max(cursor, it->second);
      mergedStart = std::min(mergedStart, it->first);
      mergedEnd = std::max(mergedEnd, it->second);
      it = intervals_.erase(it);
    }
    if (cursor < end) uncovered.emplace_back(cursor, end);
    intervals_.emplace(mergedStart, mergedEnd);
    return uncovered;
  }

  bool covers(UnixMillis instant) const {
    auto it = intervals_.upper_bound(instant);
    return it != intervals_.begin() && std::prev(it)->second > instant;
  }

 private:
  std::map<UnixMillis, UnixMillis> intervals_;
};

struct DayTable {
  const HealthEvidenceDayWindow* window = nullptr;
  std::vector<double> amounts;
  std::vector<bool> reached;
  bool usable = false;
};

class BucketTables {
 public:
  explicit BucketTables(const std::vector<HealthEvidenceDayWindow>& windows) {
    for (const auto& window : windows) {
      DayTable table{&window, {}, {}, false};
      const bool inRange = isHealthInstant(window.start) && isHealthInstant(window.end);
      const UnixMillis length = inRange && window.end > window.start ? window.end - window.start : 0;
      if (length > 0 && length <= kLongestWindowMillis) {
        const auto count = static_cast<std::size_t>((length + kBucketMillis - 1) / kBucketMillis);
        table.amounts.assign(count, 0.0);
        table.reached.assign(count, false);
        table.usable = true;
      }
      tables_.push_back(std::move(table));
    }
  }

  // Adds to every bucket that [start, end) overlaps its share of a sample of
  // `steps` over `sampleMillis`: steps × overlap ÷ sample length, multiplied
  // first so that even splits come out exact.
  void spread(UnixMillis start, UnixMillis end, double steps, UnixMillis sampleMillis) {
    for (DayTable& table : tables_) {
      if (!table.usable) continue;
      const UnixMillis from = std::max(start, table.window->start);
      const UnixMillis to = std::min(end, table.window->end);
      if (from >= to) continue;
      auto index = static_cast<std::size_t>((from - table.window->start) / kBucketMillis);
      for (UnixMillis cellStart = table.window->start + static_cast<UnixMillis>(index) * kBucketMillis; cellStart < to;
           cellStart += kBucketMillis, ++index) {
        const UnixMillis overlap = std::min(to, cellStart + kBucketMillis) - std::max(from, cellStart);
        table.amounts[index] += steps * static_cast<double>(overlap) / static_cast<double>(sampleMillis);
        table.reached[index] = true;
      }
    }
  }

  // Adds a sample without duration to the bucket that holds `instant`.
  void place(UnixMillis instant, double steps) {
    for (DayTable& table : tables_) {
      if (!table.usable || instant < table.window->start || instant >= table.window->end) continue;
      const auto index = static_cast<std::size_t>((instant - table.window->start) / kBucketMillis);
      table.amounts[index] += steps;
      table.reached[index] = true;
    }
  }

  std::vector<HealthEvidenceDayRead> reads(UnixMillis cutoff) const {
    std::vector<HealthEvidenceDayRead> days;
    for (const DayTable& table : tables_) {
      HealthEvidenceDayRead read{table.window->day, HealthEvidenceReadOutcome::noReadableData, {}};
      if (!table.usable) read.outcome = HealthEvidenceReadOutcome::readFailed;
      for (std::size_t index = 0; index < table.amounts.size(); ++index) {
        if (!table.reached[index]) continue;
        const UnixMillis start = table.window->start + static_cast<UnixMillis>(index) * kBucketMillis;
        const UnixMillis end = std::min(start + kBucketMillis, table.window->end);
        read.buckets.push_back({Date::fromUnixMillis(static_cast<double>(start)),
                                Date::fromUnixMillis(static_cast<double>(end)), table.amounts[index], end > cutoff});
      }
      if (!read.buckets.empty()) read.outcome = HealthEvidenceReadOutcome::measured;
      days.push_back(std::move(read));
    }
    return days;
  }

 private:
  std::vector<DayTable> tables_;
};

bool isCountable(const HealthStepSample& sample) {
  return isHealthInstant(sample.start) && isHealthInstant(sample.end) && sample.end >= sample.start &&
         std::isfinite(sample.value) && sample.value >= 0;
}

}  // namespace

std::vector<HealthEvidenceDayRead> bucketStepSamples(std::span<const HealthStepSample> samples,
                                                     const HealthEvidenceReadRequest& request,
                                                     const HealthSourcePriority& priority) {
  // Sources ranked once each, then samples ordered by rank and time, so each
  // claims the time that no better source has claimed.
  std::map<std::string, HealthSourcePriority::Rank, std::less<>> ranks;
  for (const auto& sample : samples) {
    if (!ranks.contains(sample.source)) ranks.emplace(sample.source, priority.rank(sample.source));
  }
  std::vector<const HealthStepSample*> ordered;
  ordered.reserve(samples.size());
  for (const auto& sample : samples) {
    if (isCountable(sample)) ordered.push_back(&sample);
  }
  std::ranges::stable_sort(ordered, [&ranks](const HealthStepSample* a, const HealthStepSample* b) {
    const auto& rankA = ranks.find(a->source)->second;
    const auto& rankB = ranks.find(b->source)->second;
    if (rankA != rankB) return rankA < rankB;
    return std::tie(a->start, a->end) < std::tie(b->start, b->end);
  });

  BucketTables tables(request.days);
  CoveredTime covered;
  for (const HealthStepSample* sample : ordered) {
    if (sample->start == sample->end) {
      if (!covered.covers(sample->start)) tables.place(sample->start, sample->value);
      continue;
    }
    const UnixMillis length = checkedSub(sample->end, sample->start);
    for (const auto& [from, to] : covered.claim(sample->start, sample->end)) {
      tables.spread(from, to, sample->value, length);
    }
  }
  return tables.reads(request.observationCutoff);
}

HealthEvidenceReading readHealthEvidence(HealthEvidenceStore& store, const HealthEvidenceReadRequest& request,
                                         const HealthSourcePriority& priority) {
  HealthEvidenceReading reading;
  reading.result.authorization = effectiveAuthorization(request, store.authorization());
  const auto everyDay = [&](HealthEvidenceReadOutcome outcome) {
    for (const auto& window : request.days) reading.result.days.push_back({window.day, outcome, {}});
  };
  if (reading.result.authorization == HealthEvidenceAuthorization::requestNotCompleted) {
    everyDay(HealthEvidenceReadOutcome::authorizationRequestNotCompleted);
    return reading;
  }
  if (request.days.empty()) return reading;
  const UnixMillis from = std::ranges::min(request.days, {}, &HealthEvidenceDayWindow::start).start;
  const UnixMillis to = std::ranges::max(request.days, {}, &HealthEvidenceDayWindow::end).end;
  auto samples = store.stepSamples(from, to);
  if (!samples) {
    everyDay(HealthEvidenceReadOutcome::readFailed);
    reading.failure = std::move(samples.error());
    return reading;
  }
  reading.result.days = bucketStepSamples(*samples, request, priority);
  return reading;
}

}  // namespace kovi
