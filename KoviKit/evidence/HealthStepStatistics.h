#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceReadRequest.h"
#include "KoviKit/evidence/HealthSourcePriority.h"
#include "KoviKit/evidence/HealthStepSample.h"

namespace kovi {

// Step samples summed into each requested day's 15-minute buckets, as a
// health store answers a cumulative statistics query with a 15-minute
// interval anchored at the day's start:
//
// - A sample counts evenly over its time: one that straddles bucket or day
//   edges is split in proportion to its overlap with each bucket; a sample
//   without duration counts in the bucket that holds its instant.
// - Where samples overlap in time, the overlapped time counts once, from the
//   source that comes first in `priority`; the others count only for the
//   time nobody before them covered. Overlapping samples of one source count
//   once too (the earlier one).
// - Only buckets some sample reached are reported, in time order; a bucket
//   whose end lies after the cutoff is provisional.
// - A day that no sample reached is `noReadableData`, never zero steps.
// - A window that cannot be a day (empty, or longer than two days) is
//   `readFailed`.
std::vector<HealthEvidenceDayRead> bucketStepSamples(std::span<const HealthStepSample> samples,
                                                     const HealthEvidenceReadRequest& request,
                                                     const HealthSourcePriority& priority);

// A read of the store: the result, and why the store could not be read when
// every day came back `readFailed` for that reason.
struct HealthEvidenceReading {
  HealthEvidenceReadResult result;
  std::optional<std::string> failure;
};

// Reads the request's days from `store`. An authorization request known not
// to be completed reads nothing: every day is
// `authorizationRequestNotCompleted`, and the permission prompt comes first.
HealthEvidenceReading readHealthEvidence(HealthEvidenceStore& store, const HealthEvidenceReadRequest& request,
                                         const HealthSourcePriority& priority);

}  // namespace kovi
