#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestDeviceKey.h"
#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/evidence/V6EvidencePendingStore.h"
#include "KoviKit/evidence/V6EvidenceSubmissionError.h"
#include "KoviKit/evidence/V6WalkingEvidenceAPI.h"
#include "KoviKit/evidence/V6WalkingSyncPlanner.h"

namespace kovi {

// Signs and sends one member's walking evidence for one kovi, in the order the
// records impose: pending records first (each resent as it was, with its
// requestId), then the context and the writer decision (a writer transfer
// from this device's own replaced key comes first), then the day plan, a
// challenge, the envelope, the assertion, the pending record, and only then
// the request. A record leaves the pending store when a receipt covers it,
// or when the service refuses it for good.
class V6WalkingEvidenceSubmitter {
 public:
  struct Dependencies {
    V6WalkingEvidenceAPI& api;
    DeviceKeyService& keys;
    V6EvidencePendingStore& pending;
    // Unix milliseconds now, for the envelope's `issuedAt`.
    std::function<UnixMillis()> clock;
    // A fresh request identifier for each new operation.
    std::function<std::string()> newRequestId;
  };

  // What happened to one pending record.
  struct Resolved {
    V6EvidencePendingStore::Record record;
    // The receipt of a record that was accepted; none for a dropped one.
    std::optional<V6WalkingReceipt> receipt;
    std::optional<V6WriterTransferReceipt> transferReceipt;
    // The code of a record the service refused for good.
    std::optional<std::string> droppedFor;
  };

  struct Outcome {
    std::vector<Resolved> resolved;
    std::optional<V6WriterTransferReceipt> transfer;
    // The day plan of the kovi, one line per window.
    std::vector<V6WalkingSyncPlanner::DayPlan> days;
    std::optional<V6WalkingReceipt> receipt;
  };

  V6WalkingEvidenceSubmitter(Dependencies dependencies, std::string appIdentity, AppAttestEnvironment environment);

  std::expected<Outcome, V6EvidenceSubmissionError> submit(const AppAttestDeviceKey& key, std::string_view ownerID,
                                                           std::string_view reference,
                                                           const std::vector<HealthEvidenceDayRead>& reads,
                                                           UnixMillis cutoff);
  // The same with the kovi's context already fetched (the automatic uploader
  // fetches it first to know which days to read); fetched again when a
  // pending record is resent first, since that moves the days' revisions.
  std::expected<Outcome, V6EvidenceSubmissionError> submit(const AppAttestDeviceKey& key, std::string_view ownerID,
                                                           std::string_view reference, V6WalkingContextAnswer context,
                                                           const std::vector<HealthEvidenceDayRead>& reads,
                                                           UnixMillis cutoff);

  // Resends every pending record of `ownerID`. Stops at the first record that
  // stays pending (no answer) with "walking_evidence_pending" semantics: no
  // new measurement is built until it is resolved.
  std::expected<std::vector<Resolved>, V6EvidenceSubmissionError> resolvePending(std::string_view ownerID);

 private:
  std::expected<Resolved, V6EvidenceSubmissionError> resend(const V6EvidencePendingStore::Record& record);
  std::expected<V6WriterTransferReceipt, V6EvidenceSubmissionError> transferWriter(
      const AppAttestDeviceKey& key, std::string_view ownerID, const V6WalkingContext& context);
  std::expected<V6WalkingSubmission, V6EvidenceSubmissionError> buildSubmission(
      const AppAttestDeviceKey& key, const V6WalkingContextAnswer& answer,
      std::vector<V6WalkingBucketEntry> entries);

  Dependencies dependencies_;
  std::string appIdentity_;
  AppAttestEnvironment environment_;
};

}  // namespace kovi
