#include "tests/evidence_service/LoopbackEvidenceService.h"

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi::testing {
namespace {

using Json = nlohmann::ordered_json;

constexpr UnixMillis kDay = 24 * 60 * 60 * 1000;
constexpr UnixMillis kChallengeLifetime = 10 * 60 * 1000;

// What the service keeps about a challenge's clock: the tests run in real
// time, so the real clock it is.
UnixMillis now() { return Date::now().unixMillis(); }

std::string refusal(std::string_view code) { return Json{{"error", code}}.dump(); }


// The fields of `object` in `order`, compact: nlohmann writes integers bare,
// strings with the minimal escapes and no whitespace, which is the canonical
// form — a second implementation beside the client's own writer.
std::string canonicalOf(const Json& object, std::initializer_list<const char*> order) {
  Json ordered = Json::object();
  for (const char* key : order) ordered[key] = object.at(key);
  return ordered.dump();
}

std::string observationPayloadHash(const Json& observation) {
  Json content = Json::object();
  content["sourcePolicy"] = observation.at("sourcePolicy");
  content["windowStart"] = observation.at("windowStart");
  content["windowEnd"] = observation.at("windowEnd");
  content["closedThrough"] = observation.at("measurementCutoff");
  content["buckets"] = observation.at("buckets");
  return sha256Hex(content.dump());
}

}  // namespace

LoopbackEvidenceService::LoopbackEvidenceService(std::string reference, WalkingKoviRules rules, UnixMillis start)
    : reference_(std::move(reference)),
      rules_(std::move(rules)),
      start_(start),
      server_([this](httplib::Server& server) {
        server.Post("/api/native/v6/evidence", [this](const httplib::Request& request, httplib::Response& response) {
          const Answer answer = handle(request.body);
          response.status = answer.status;
          if (!answer.body.empty()) response.set_content(answer.body, "application/json");
        });
      }) {}

std::int64_t LoopbackEvidenceService::writerEpoch() const {
  std::scoped_lock lock(mutex_);
  return writerEpoch_;
}

std::optional<std::string> LoopbackEvidenceService::writerDeviceKeyId() const {
  std::scoped_lock lock(mutex_);
  return writer_;
}

LoopbackEvidenceService::Day LoopbackEvidenceService::day(int index) const {
  std::scoped_lock lock(mutex_);
  const auto found = days_.find(index);
  return found == days_.end() ? Day{} : found->second;
}

std::vector<std::string> LoopbackEvidenceService::submittedRequestIds() const {
  std::scoped_lock lock(mutex_);
  return submittedRequestIds_;
}

int LoopbackEvidenceService::acceptedSubmissions() const {
  std::scoped_lock lock(mutex_);
  return acceptedSubmissions_;
}

bool LoopbackEvidenceService::waitUntilHeld(std::chrono::milliseconds limit) { return arrivedGate_.waitOpen(limit); }

LoopbackEvidenceService::Answer LoopbackEvidenceService::handle(const std::string& body) {
  const Json request = Json::parse(body, nullptr, false);
  if (request.is_discarded() || !request.is_object() || !request.contains("action")) {
    return {400, refusal("walking_evidence_request_rejected")};
  }
  const std::string action = request.value("action", "");
  if (action == "submitWalkingEvidence" && holdNext_.exchange(false)) {
    arrivedGate_.open();
    heldGate_.waitOpen(std::chrono::seconds(30));
    return {503, ""};
  }
  Answer answer;
  try {
    if (action == "createAttestationChallenge") answer = createChallenge(request);
    else if (action == "registerDeviceKey") answer = registerKey(request);
    else if (action == "walkingContext") answer = context(request);
    else if (action == "walkingKovis") answer = kovis(request);
    else if (action == "submitWalkingEvidence") answer = submit(request, body);
    else if (action == "transferEvidenceWriter") answer = transfer(request);
    else answer = {400, refusal("walking_evidence_request_rejected")};
  } catch (const nlohmann::json::exception&) {
    answer = {400, refusal("walking_evidence_request_rejected")};
  }
  // The submission is accepted; only its receipt goes missing.
  if (answer.status == 200 && action == "submitWalkingEvidence" && loseNextAnswer_.exchange(false)) return {503, ""};
  return answer;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::createChallenge(const Json& request) {
  std::scoped_lock lock(mutex_);
  const std::string purpose = request.at("purpose").get<std::string>();
  const std::string id = "challenge-" + std::to_string(nextId_++);
  Challenge challenge{sha256Hex(id + "-secret"), purpose, now() + kChallengeLifetime, false};
  challenges_[id] = challenge;
  return {200, Json{{"challenge",
                     {{"financialActorId", "actor-1"},
                      {"challengeId", id},
                      {"challenge", challenge.challenge},
                      {"purpose", purpose},
                      {"requestId", request.at("requestId")},
                      {"expiresAt", challenge.expiresAt}}}}
                   .dump()};
}

std::optional<std::string> LoopbackEvidenceService::consumeChallenge(const std::string& challengeId,
                                                                     const std::string& challenge,
                                                                     const std::string& purpose) {
  const auto found = challenges_.find(challengeId);
  if (found == challenges_.end() || found->second.challenge != challenge || found->second.purpose != purpose) {
    return "attestation_challenge_invalid";
  }
  if (found->second.used) return "challenge_consumed";
  if (found->second.expiresAt < now()) return "challenge_expired";
  found->second.used = true;
  return std::nullopt;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::registerKey(const Json& request) {
  std::scoped_lock lock(mutex_);
  const Json& registration = request.at("registration");
  const auto challengeId = registration.at("challengeId").get<std::string>();
  const auto found = challenges_.find(challengeId);
  if (found == challenges_.end()) return {400, refusal("attestation_challenge_invalid")};
  if (auto refused = consumeChallenge(challengeId, found->second.challenge, "registerDeviceKey")) {
    return {400, refusal(*refused)};
  }
  if (registration.at("environment") != "development") return {400, refusal("attestation_environment_mismatch")};
  const auto object = base64Decode(registration.at("attestationObject").get<std::string>());
  if (!object) return {400, refusal("attestation_invalid_chain")};
  const Json attestation = Json::parse(object->begin(), object->end(), nullptr, false);
  if (attestation.is_discarded() || attestation.value("fmt", "") != "kovi-software-p256") {
    return {400, refusal("attestation_invalid_chain")};
  }
  const auto publicKey = base64Decode(attestation.at("publicKey").get<std::string>());
  const auto signature = base64Decode(attestation.at("signature").get<std::string>());
  const Sha256Digest nonce = sha256(found->second.challenge);
  if (!publicKey || !signature ||
      !verifyP256Signature(*publicKey, std::string(nonce.begin(), nonce.end()), *signature)) {
    return {400, refusal("attestation_nonce_mismatch")};
  }
  if (lowercaseHex(sha256(*publicKey)) != registration.at("keyId")) return {400, refusal("attestation_invalid_chain")};
  const std::string serverId = "device-key-" + std::to_string(nextId_++);
  keys_[serverId] = Key{*publicKey, registration.at("appIdentity").get<std::string>(), -1};
  return {200, Json{{"deviceKeyId", serverId}}.dump()};
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::context(const Json& request) {
  std::scoped_lock lock(mutex_);
  if (request.at("reference") != reference_) return {404, refusal("walking_evidence_request_rejected")};
  Json windows = Json::array();
  for (int index = 0; index < rules_.durationDays; ++index) {
    windows.push_back({{"day", index}, {"start", start_ + index * kDay}, {"end", start_ + (index + 1) * kDay}});
  }
  Json revisions = Json::array();
  for (const auto& [index, day] : days_) {
    revisions.push_back({{"day", index}, {"revision", day.revision}, {"payloadHash", day.payloadHash}, {"summary", {}}});
  }
  const Json context{{"reference", reference_},
                     {"financialActorId", "actor-1"},
                     {"rulesHash", rules_.rulesHash()},
                     {"rules", Json::parse(rules_.canonicalJson())},
                     {"status", 1},
                     {"sourcePolicy", "walking-health-buckets-v1"},
                     {"windows", windows},
                     {"writerEpoch", writerEpoch_},
                     {"writerDeviceKeyId", writer_ ? Json(*writer_) : Json()},
                     {"evidenceClosesAt", start_ + (rules_.durationDays + 1) * kDay},
                     {"serverNow", now()},
                     {"acceptedTotalSteps", 0},
                     {"revisions", revisions}};
  return {200, Json{{"context", context},
                    {"chain", {{"chainId", 8453}, {"registryAddress", "0x" + std::string(40, 'a')}, {"koviId", "42"}}}}
                   .dump()};
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::kovis(const Json& request) {
  ++koviListRequests_;
  // One kovi: the first page holds it, and a cursor past it gives an empty last page.
  if (!request.at("cursor").is_null()) {
    const Json next = loopCursors_ ? Json(request.at("cursor") == "a" ? "b" : "a") : Json();
    return {200, Json{{"kovis", Json::array()}, {"nextCursor", next}}.dump()};
  }
  if (request.at("limit").get<int>() < 1) return {400, refusal("walking_evidence_request_rejected")};
  return {200, Json{{"kovis", {{{"reference", reference_}}}}, {"nextCursor", "after-" + reference_}}.dump()};
}

std::optional<std::string> LoopbackEvidenceService::checkAssertion(const std::string& keyId,
                                                                   const std::string& clientData,
                                                                   const Json& assertion) {
  const auto key = keys_.find(keyId);
  if (key == keys_.end()) return "attestation_key_unknown";
  const auto authenticatorData = base64Decode(assertion.at("authenticatorData").get<std::string>());
  const auto signature = base64Decode(assertion.at("signature").get<std::string>());
  if (!authenticatorData || !signature) return "assertion_invalid";
  const auto counter = verifyAssertion(key->second.publicKey, key->second.appIdentity, sha256(clientData),
                                       AppAttestAssertion{*authenticatorData, *signature});
  if (!counter) return "assertion_invalid";
  if (static_cast<std::int64_t>(*counter) <= key->second.lastCounter) return "assertion_counter_replay";
  key->second.lastCounter = *counter;
  return std::nullopt;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::submit(const Json& request, const std::string& body) {
  std::scoped_lock lock(mutex_);
  const Json& envelope = request.at("envelope");
  const std::string requestId = envelope.at("requestId").get<std::string>();
  submittedRequestIds_.push_back(requestId);
  const std::string bodyHash = sha256Hex(body);
  if (const auto stored = receipts_.find(requestId); stored != receipts_.end()) {
    if (stored->second.bodyHash != bodyHash) return {409, refusal("walking_evidence_request_conflict")};
    return {200, stored->second.answer};
  }
  if (body.size() > payloadLimit_) return {413, refusal("walking_evidence_payload_too_large")};
  if (const int bump = bumpDay_.exchange(-1); bump >= 0) {
    Day& day = days_[bump];
    ++day.revision;
    day.payloadHash = std::string(64, '0');
  }

  const std::string canonical = canonicalOf(
      envelope, {"protocolVersion", "purpose", "appIdentity", "environment", "financialActorId", "deviceKeyId",
                 "writerEpoch", "chainId", "registryAddress", "koviId", "rulesHash", "requestId", "challengeId",
                 "challenge", "windowIds", "expectedRevisions", "measurementCutoffs", "evidencePayloadHash",
                 "issuedAt", "expiresAt"});
  if (envelope.size() != 20 || envelope.at("protocolVersion") != 2 || envelope.at("purpose") != "submitWalkingEvidence") {
    return {400, refusal("walking_evidence_request_rejected")};
  }
  const std::string keyId = envelope.at("deviceKeyId").get<std::string>();
  if (auto refused = consumeChallenge(envelope.at("challengeId").get<std::string>(),
                                      envelope.at("challenge").get<std::string>(), "submitWalkingEvidence")) {
    return {400, refusal(*refused)};
  }
  if (auto refused = checkAssertion(keyId, canonical, request.at("assertion"))) return {401, refusal(*refused)};
  if (writer_ && *writer_ != keyId) return {409, refusal("walking_evidence_writer_device_mismatch")};
  if (envelope.at("writerEpoch") != writerEpoch_) return {409, refusal("walking_evidence_writer_epoch_stale")};
  if (envelope.at("rulesHash") != rules_.rulesHash() || request.at("reference") != reference_) {
    return {400, refusal("walking_evidence_request_rejected")};
  }
  const Json& entries = request.at("entries");
  if (sha256Hex(entries.dump()) != envelope.at("evidencePayloadHash")) {
    return {400, refusal("walking_evidence_request_rejected")};
  }
  if (entries.size() != envelope.at("windowIds").size()) return {400, refusal("walking_evidence_request_rejected")};
  for (std::size_t index = 0; index < entries.size(); ++index) {
    const Json& entry = entries.at(index);
    if (entry.at("day") != envelope.at("windowIds").at(index) ||
        entry.at("expectedRevision") != envelope.at("expectedRevisions").at(index) ||
        entry.at("observation").at("measurementCutoff") != envelope.at("measurementCutoffs").at(index)) {
      return {400, refusal("walking_evidence_request_rejected")};
    }
    if (entry.at("expectedRevision") != days_[entry.at("day").get<int>()].revision) {
      return {409, refusal("walking_evidence_revision_conflict")};
    }
  }

  Json accepted = Json::array();
  for (const Json& entry : entries) {
    Day& day = days_[entry.at("day").get<int>()];
    ++day.revision;
    day.payloadHash = observationPayloadHash(entry.at("observation"));
    accepted.push_back({{"day", entry.at("day")}, {"revision", day.revision}, {"payloadHash", day.payloadHash}});
  }
  writer_ = keyId;
  ++acceptedSubmissions_;
  const std::string answer =
      Json{{"receipt", {{"requestId", requestId}, {"writerEpoch", writerEpoch_}, {"deviceKeyId", keyId}, {"accepted", accepted}}}}
          .dump();
  receipts_[requestId] = {bodyHash, answer};
  return {200, answer};
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::transfer(const Json& request) {
  std::scoped_lock lock(mutex_);
  const Json& plan = request.at("request").at("plan");
  const std::string keyId = plan.at("deviceKeyId").get<std::string>();
  if (auto refused = consumeChallenge(plan.at("challengeId").get<std::string>(), plan.at("challenge").get<std::string>(),
                                      "transferEvidenceWriter")) {
    return {400, refusal(*refused)};
  }
  const std::string signedText = "kovi.v6.writer-transfer.v1\n" +
                                 canonicalOf(plan, {"reference", "requestId", "deviceKeyId", "expectedEpoch",
                                                    "challengeId", "challenge", "policyId"});
  if (auto refused = checkAssertion(keyId, signedText, request.at("request").at("assertion"))) {
    return {401, refusal(*refused)};
  }
  if (plan.at("expectedEpoch") != writerEpoch_) return {409, refusal("walking_evidence_writer_epoch_stale")};
  ++writerEpoch_;
  writer_ = keyId;
  return {200, Json{{"receipt",
                     {{"requestId", plan.at("requestId")},
                      {"reference", plan.at("reference")},
                      {"deviceKeyId", keyId},
                      {"writerEpoch", writerEpoch_},
                      {"acceptedAt", now()}}}}
                   .dump()};
}

}  // namespace kovi::testing
