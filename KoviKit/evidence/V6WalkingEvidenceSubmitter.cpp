#include "KoviKit/evidence/V6WalkingEvidenceSubmitter.h"

#include <algorithm>

namespace kovi {
namespace {

using Submitter = V6WalkingEvidenceSubmitter;

V6EvidenceSubmissionError localError(std::string_view code, std::string detail) {
  return V6EvidenceSubmissionError::fromWalking(WalkingEvidenceError{std::string(code), std::move(detail)});
}

// Whether `receipt` accepts every day the submission sent.
bool coversAllDays(const V6WalkingReceipt& receipt, const V6WalkingSubmission& submission) {
  return std::ranges::all_of(submission.entries, [&](const V6WalkingBucketEntry& entry) {
    return std::ranges::any_of(receipt.accepted, [&](const auto& accepted) { return accepted.day == entry.day; });
  });
}

}  // namespace

Submitter::V6WalkingEvidenceSubmitter(Dependencies dependencies, std::string appIdentity,
                                      AppAttestEnvironment environment)
    : dependencies_(std::move(dependencies)), appIdentity_(std::move(appIdentity)), environment_(environment) {}

std::expected<Submitter::Resolved, V6EvidenceSubmissionError> Submitter::resend(
    const V6EvidencePendingStore::Record& record) {
  Resolved resolved{record, std::nullopt, std::nullopt, std::nullopt};
  std::optional<NativeAccountError> refusal;
  if (const auto* submission = std::get_if<V6WalkingSubmission>(&record.operation)) {
    auto receipt = dependencies_.api.submit(*submission);
    if (receipt && (receipt->requestId != submission->envelope.requestId || !coversAllDays(*receipt, *submission))) {
      // An answer that does not cover the record leaves it pending.
      return std::unexpected(localError(walkingErrorCode::evidencePending,
                                        "the receipt does not list every day of request " +
                                            submission->envelope.requestId));
    }
    if (receipt) resolved.receipt = std::move(*receipt);
    else refusal = receipt.error();
  } else {
    auto receipt = dependencies_.api.transferEvidenceWriter(std::get<V6WriterTransferRequest>(record.operation));
    if (receipt) resolved.transferReceipt = std::move(*receipt);
    else refusal = receipt.error();
  }
  if (refusal) {
    const auto code = refusal->code();
    if (refusal->kind() != NativeAccountError::Case::service || !code || !dropsPendingRecord(*code)) {
      return std::unexpected(V6EvidenceSubmissionError::fromService(*refusal));
    }
    resolved.droppedFor = std::string(*code);
  }
  if (auto removed = dependencies_.pending.remove(record.ownerID, record.reference(), record.requestId()); !removed) {
    return std::unexpected(V6EvidenceSubmissionError::fromPendingStore(removed.error()));
  }
  return resolved;
}

std::expected<std::vector<Submitter::Resolved>, V6EvidenceSubmissionError> Submitter::resolvePending(
    std::string_view ownerID) {
  const auto listing = dependencies_.pending.pending(ownerID);
  // A pending file that does not decode may be a submission the service
  // holds; nothing new is built over it.
  if (!listing.corrupt.empty()) {
    return std::unexpected(V6EvidenceSubmissionError::fromPendingStore(listing.corrupt.front()));
  }
  std::vector<Resolved> resolved;
  for (const auto& record : listing.records) {
    auto outcome = resend(record);
    if (!outcome) return std::unexpected(outcome.error());
    resolved.push_back(std::move(*outcome));
  }
  return resolved;
}

std::expected<V6WriterTransferReceipt, V6EvidenceSubmissionError> Submitter::transferWriter(
    const AppAttestDeviceKey& key, std::string_view ownerID, const V6WalkingContext& context) {
  const std::string requestId = dependencies_.newRequestId();
  auto challenge = dependencies_.api.createAttestationChallenge(requestId, key.serverDeviceKeyId,
                                                                AppAttestPurpose::transferEvidenceWriter);
  if (!challenge) return std::unexpected(V6EvidenceSubmissionError::fromService(challenge.error()));
  V6WriterTransferRequest request;
  request.plan = {context.reference, requestId,           *key.serverDeviceKeyId, context.writerEpoch,
                  challenge->challengeId, challenge->challenge, challenge->policyId};
  auto assertion = dependencies_.keys.generateAssertion(key.keyId, request.plan.clientDataHash());
  if (!assertion) return std::unexpected(V6EvidenceSubmissionError::fromDeviceKey(assertion.error()));
  request.assertion = std::move(*assertion);

  const V6EvidencePendingStore::Record record{std::string(V6EvidencePendingStore::kProtocolGeneration),
                                              std::string(ownerID), *key.serverDeviceKeyId, request};
  if (auto saved = dependencies_.pending.save(record); !saved) {
    return std::unexpected(V6EvidenceSubmissionError::fromPendingStore(saved.error()));
  }
  auto resolved = resend(record);
  if (!resolved) return std::unexpected(resolved.error());
  if (resolved->droppedFor) {
    return std::unexpected(V6EvidenceSubmissionError::fromService(NativeAccountError::service(*resolved->droppedFor)));
  }
  return std::move(*resolved->transferReceipt);
}

std::expected<V6WalkingSubmission, V6EvidenceSubmissionError> Submitter::buildSubmission(
    const AppAttestDeviceKey& key, const V6WalkingContextAnswer& answer, std::vector<V6WalkingBucketEntry> entries) {
  const std::string requestId = dependencies_.newRequestId();
  auto challenge = dependencies_.api.createAttestationChallenge(requestId, key.serverDeviceKeyId,
                                                                AppAttestPurpose::submitWalkingEvidence);
  if (!challenge) return std::unexpected(V6EvidenceSubmissionError::fromService(challenge.error()));

  V6WalkingSubmission submission;
  submission.reference = answer.context.reference;
  AttestedEvidenceEnvelope& envelope = submission.envelope;
  envelope.purpose = AppAttestPurpose::submitWalkingEvidence;
  envelope.appIdentity = appIdentity_;
  envelope.environment = environment_;
  envelope.financialActorId = answer.context.financialActorId;
  envelope.deviceKeyId = *key.serverDeviceKeyId;
  envelope.writerEpoch = answer.context.writerEpoch;
  envelope.chainId = answer.chain.chainId;
  envelope.registryAddress = answer.chain.registryAddress;
  envelope.koviId = answer.chain.koviId;
  envelope.rulesHash = answer.context.rulesHash;
  envelope.requestId = requestId;
  envelope.challengeId = challenge->challengeId;
  envelope.challenge = challenge->challenge;
  for (const auto& entry : entries) {
    envelope.windowIds.push_back(entry.day);
    envelope.expectedRevisions.push_back(entry.expectedRevision);
    envelope.measurementCutoffs.push_back(entry.observation.measurementCutoff);
  }
  envelope.evidencePayloadHash = evidencePayloadHash(entries);
  envelope.issuedAt = dependencies_.clock();
  envelope.expiresAt = challenge->expiresAt;
  if (auto valid = envelope.validate(); !valid) {
    return std::unexpected(localError("walking_evidence_request_rejected",
                                      "the envelope would be refused: " + valid.error().message()));
  }
  submission.entries = std::move(entries);
  auto assertion = dependencies_.keys.generateAssertion(key.keyId, envelope.clientDataHash());
  if (!assertion) return std::unexpected(V6EvidenceSubmissionError::fromDeviceKey(assertion.error()));
  submission.assertion = std::move(*assertion);
  return submission;
}

std::expected<Submitter::Outcome, V6EvidenceSubmissionError> Submitter::submit(
    const AppAttestDeviceKey& key, std::string_view ownerID, std::string_view reference,
    const std::vector<HealthEvidenceDayRead>& reads, UnixMillis cutoff) {
  if (!key.serverDeviceKeyId) {
    return std::unexpected(localError("device_key_not_registered", "the account's device key is not registered"));
  }
  auto context = dependencies_.api.walkingContext(reference);
  if (!context) return std::unexpected(V6EvidenceSubmissionError::fromService(context.error()));
  return submit(key, ownerID, reference, std::move(*context), reads, cutoff);
}

std::expected<Submitter::Outcome, V6EvidenceSubmissionError> Submitter::submit(
    const AppAttestDeviceKey& key, std::string_view ownerID, std::string_view reference,
    V6WalkingContextAnswer context, const std::vector<HealthEvidenceDayRead>& reads, UnixMillis cutoff) {
  if (!key.serverDeviceKeyId) {
    return std::unexpected(localError("device_key_not_registered", "the account's device key is not registered"));
  }
  Outcome outcome;
  auto resolved = resolvePending(ownerID);
  if (!resolved) return std::unexpected(resolved.error());
  outcome.resolved = std::move(*resolved);

  std::expected<V6WalkingContextAnswer, NativeAccountError> answer = std::move(context);
  if (!outcome.resolved.empty()) {
    // A resent record moved the days' revisions past the context given.
    answer = dependencies_.api.walkingContext(reference);
    if (!answer) return std::unexpected(V6EvidenceSubmissionError::fromService(answer.error()));
  }
  switch (V6WalkingSyncPlanner::writerDecision(answer->context.writerDeviceKeyId, *key.serverDeviceKeyId,
                                               key.replacedServerDeviceKeyIds)) {
    case V6WalkingSyncPlanner::WriterDecision::sign: break;
    case V6WalkingSyncPlanner::WriterDecision::otherDevice:
      return std::unexpected(V6EvidenceSubmissionError::fromService(
          NativeAccountError::service("walking_evidence_writer_device_mismatch")));
    case V6WalkingSyncPlanner::WriterDecision::transferFromOwnReplacedKey: {
      auto transfer = transferWriter(key, ownerID, answer->context);
      if (!transfer) return std::unexpected(transfer.error());
      outcome.transfer = std::move(*transfer);
      // The writer generation moved; the envelope must carry the new one.
      answer = dependencies_.api.walkingContext(reference);
      if (!answer) return std::unexpected(V6EvidenceSubmissionError::fromService(answer.error()));
      break;
    }
  }

  auto plans = V6WalkingSyncPlanner::plan(answer->context, reads, cutoff);
  if (!plans) return std::unexpected(V6EvidenceSubmissionError::fromWalking(plans.error()));
  outcome.days = std::move(*plans);
  std::vector<V6WalkingBucketEntry> entries;
  for (const auto& day : outcome.days) {
    if (const auto* submit = std::get_if<V6WalkingSyncPlanner::Submit>(&day.outcome)) entries.push_back(submit->entry);
  }
  if (entries.empty()) return outcome;

  auto submission = buildSubmission(key, *answer, std::move(entries));
  if (!submission) return std::unexpected(submission.error());
  const V6EvidencePendingStore::Record record{std::string(V6EvidencePendingStore::kProtocolGeneration),
                                              std::string(ownerID), *key.serverDeviceKeyId, *submission};
  if (auto saved = dependencies_.pending.save(record); !saved) {
    return std::unexpected(V6EvidenceSubmissionError::fromPendingStore(saved.error()));
  }
  auto sent = resend(record);
  if (!sent) return std::unexpected(sent.error());
  if (sent->droppedFor) {
    return std::unexpected(V6EvidenceSubmissionError::fromService(NativeAccountError::service(*sent->droppedFor)));
  }
  outcome.receipt = std::move(sent->receipt);
  return outcome;
}

}  // namespace kovi
