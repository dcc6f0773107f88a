#include "tests/evidence_service/LoopbackEvidenceService.h"

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi::testing {
namespace {

using Json = nlohmann::ordered_json;

constexpr UnixMillis kDay = 24 * 60 * 60 * 1000;
constexpr UnixMillis kChallengeLifetime = 10 * 60 * 1000;
constexpr const char* kRejected = "walking_evidence_request_rejected";

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
  const Json content{{"sourcePolicy", observation.at("sourcePolicy")},
                     {"windowStart", observation.at("windowStart")},
                     {"windowEnd", observation.at("windowEnd")},
                     {"closedThrough", observation.at("measurementCutoff")},
                     {"buckets", observation.at("buckets")}};
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

LoopbackEvidenceService::Answer LoopbackEvidenceService::handle(const std::string& body) {
  const Json request = Json::parse(body, nullptr, false);
  if (request.is_discarded() || !request.is_object() || !request.contains("action")) return {400, refusal(kRejected)};
  const std::string action = request.value("action", "");
  const bool submission = action == "submitWalkingEvidence";
  if (submission && holdNext_.exchange(false)) {
    arrivedGate_.open();
    heldGate_.waitOpen(std::chrono::seconds(30));
    return {503, ""};
  }
  Answer answer{400, refusal(kRejected)};
  try {
    std::scoped_lock lock(mutex_);
    if (action == "createAttestationChallenge") answer = createChallenge(request);
    else if (action == "registerDeviceKey") answer = registerKey(request);
    else if (action == "walkingContext") answer = context(request);
    else if (action == "walkingKovis") answer = kovis(request);
    else if (submission) answer = submit(request, body);
    else if (action == "transferEvidenceWriter") answer = transfer(request);
  } catch (const nlohmann::json::exception&) {
    answer = {400, refusal(kRejected)};
  }
  // The submission is accepted; only its receipt goes missing.
  if (answer.status == 200 && submission && loseNextAnswer_.exchange(false)) return {503, ""};
  return answer;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::createChallenge(const Json& request) {
  const std::string purpose = request.at("purpose").get<std::string>();
  const std::string id = "challenge-" + std::to_string(nextId_++);
  const Challenge& challenge = challenges_[id] = {sha256Hex(id + "-secret"), purpose, now() + kChallengeLifetime};
  return {200, Json{{"challenge",
                     {{"financialActorId", "actor-1"}, {"challengeId", id}, {"challenge", challenge.challenge},
                      {"purpose", purpose}, {"requestId", request.at("requestId")},
                      {"expiresAt", challenge.expiresAt}}}}
                   .dump()};
}

std::optional<LoopbackEvidenceService::Answer> LoopbackEvidenceService::consumeChallenge(const Json& signedFields,
                                                                                         const std::string& purpose) {
  const auto found = challenges_.find(signedFields.at("challengeId").get<std::string>());
  // A registration names its challenge only by id; the signature covers the text.
  if (found == challenges_.end() || found->second.purpose != purpose ||
      (signedFields.contains("challenge") && signedFields.at("challenge") != found->second.challenge)) {
    return Answer{400, refusal("attestation_challenge_invalid")};
  }
  if (found->second.used) return Answer{400, refusal("challenge_consumed")};
  if (found->second.expiresAt < now()) return Answer{400, refusal("challenge_expired")};
  found->second.used = true;
  return std::nullopt;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::registerKey(const Json& request) {
  const Json& registration = request.at("registration");
  if (auto refused = consumeChallenge(registration, "registerDeviceKey")) return *refused;
  if (registration.at("environment") != "development") return {400, refusal("attestation_environment_mismatch")};
  const auto object = base64Decode(registration.at("attestationObject").get<std::string>());
  const Json attestation = object ? Json::parse(object->begin(), object->end(), nullptr, false) : Json();
  if (!attestation.is_object() || attestation.value("fmt", "") != "kovi-software-p256") {
    return {400, refusal("attestation_invalid_chain")};
  }
  const auto publicKey = base64Decode(attestation.at("publicKey").get<std::string>());
  const auto signature = base64Decode(attestation.at("signature").get<std::string>());
  const Sha256Digest nonce = sha256(challenges_.at(registration.at("challengeId").get<std::string>()).challenge);
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
  ++contextRequests_;
  if (request.at("reference") != reference_) return {404, refusal(kRejected)};
  Json windows = Json::array();
  for (int index = 0; index < rules_.durationDays; ++index) {
    windows.push_back({{"day", index}, {"start", start_ + index * kDay}, {"end", start_ + (index + 1) * kDay}});
  }
  Json revisions = Json::array();
  for (const auto& [index, day] : state_.days) {
    revisions.push_back({{"day", index}, {"revision", day.revision}, {"payloadHash", day.payloadHash}, {"summary", {}}});
  }
  const auto& writer = state_.writerDeviceKeyId;
  const Json context{{"reference", reference_}, {"financialActorId", "actor-1"}, {"rulesHash", rules_.rulesHash()},
                     {"rules", Json::parse(rules_.canonicalJson())}, {"status", 1},
                     {"sourcePolicy", "walking-health-buckets-v1"}, {"windows", windows},
                     {"writerEpoch", state_.writerEpoch}, {"writerDeviceKeyId", writer ? Json(*writer) : Json()},
                     {"evidenceClosesAt", start_ + (rules_.durationDays + 1) * kDay}, {"serverNow", now()},
                     {"acceptedTotalSteps", 0}, {"revisions", revisions}};
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
  if (request.at("limit").get<int>() < 1) return {400, refusal(kRejected)};
  return {200, Json{{"kovis", {{{"reference", reference_}}}}, {"nextCursor", "after-" + reference_}}.dump()};
}

std::optional<LoopbackEvidenceService::Answer> LoopbackEvidenceService::checkAssertion(const std::string& keyId,
                                                                                       const std::string& clientData,
                                                                                       const Json& assertion) {
  const auto key = keys_.find(keyId);
  if (key == keys_.end()) return Answer{401, refusal("attestation_key_unknown")};
  const auto authenticatorData = base64Decode(assertion.at("authenticatorData").get<std::string>());
  const auto signature = base64Decode(assertion.at("signature").get<std::string>());
  const auto counter = authenticatorData && signature
                           ? verifyAssertion(key->second.publicKey, key->second.appIdentity, sha256(clientData),
                                             AppAttestAssertion{*authenticatorData, *signature})
                           : std::unexpected(std::string("undecodable"));
  if (!counter) return Answer{401, refusal("assertion_invalid")};
  if (static_cast<std::int64_t>(*counter) <= key->second.lastCounter) {
    return Answer{401, refusal("assertion_counter_replay")};
  }
  key->second.lastCounter = *counter;
  return std::nullopt;
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::submit(const Json& request, const std::string& body) {
  const Json& envelope = request.at("envelope");
  const std::string requestId = envelope.at("requestId").get<std::string>();
  state_.submittedRequestIds.push_back(requestId);
  const std::string bodyHash = sha256Hex(body);
  if (const auto stored = receipts_.find(requestId); stored != receipts_.end()) {
    if (stored->second.first != bodyHash) return {409, refusal("walking_evidence_request_conflict")};
    return {200, stored->second.second};
  }
  if (body.size() > payloadLimit_) return {413, refusal("walking_evidence_payload_too_large")};
  if (const int bump = bumpDay_.exchange(-1); bump >= 0) {
    state_.days[bump] = {state_.day(bump).revision + 1, std::string(64, '0')};
  }

  const std::string canonical = canonicalOf(
      envelope, {"protocolVersion", "purpose", "appIdentity", "environment", "financialActorId", "deviceKeyId",
                 "writerEpoch", "chainId", "registryAddress", "koviId", "rulesHash", "requestId", "challengeId",
                 "challenge", "windowIds", "expectedRevisions", "measurementCutoffs", "evidencePayloadHash",
                 "issuedAt", "expiresAt"});
  if (envelope.size() != 20 || envelope.at("protocolVersion") != 2 ||
      envelope.at("purpose") != "submitWalkingEvidence") {
    return {400, refusal(kRejected)};
  }
  const std::string keyId = envelope.at("deviceKeyId").get<std::string>();
  if (auto refused = consumeChallenge(envelope, "submitWalkingEvidence")) return *refused;
  if (auto refused = checkAssertion(keyId, canonical, request.at("assertion"))) return *refused;
  if (state_.writerDeviceKeyId && *state_.writerDeviceKeyId != keyId) {
    return {409, refusal("walking_evidence_writer_device_mismatch")};
  }
  if (envelope.at("writerEpoch") != state_.writerEpoch) return {409, refusal("walking_evidence_writer_epoch_stale")};
  const Json& entries = request.at("entries");
  if (envelope.at("rulesHash") != rules_.rulesHash() || request.at("reference") != reference_ ||
      sha256Hex(entries.dump()) != envelope.at("evidencePayloadHash") ||
      entries.size() != envelope.at("windowIds").size()) {
    return {400, refusal(kRejected)};
  }
  for (std::size_t index = 0; index < entries.size(); ++index) {
    const Json& entry = entries.at(index);
    if (entry.at("day") != envelope.at("windowIds").at(index) ||
        entry.at("expectedRevision") != envelope.at("expectedRevisions").at(index) ||
        entry.at("observation").at("measurementCutoff") != envelope.at("measurementCutoffs").at(index)) {
      return {400, refusal(kRejected)};
    }
    if (entry.at("expectedRevision") != state_.day(entry.at("day").get<int>()).revision) {
      return {409, refusal("walking_evidence_revision_conflict")};
    }
  }

  Json accepted = Json::array();
  for (const Json& entry : entries) {
    Day& day = state_.days[entry.at("day").get<int>()];
    day = {day.revision + 1, observationPayloadHash(entry.at("observation"))};
    accepted.push_back({{"day", entry.at("day")}, {"revision", day.revision}, {"payloadHash", day.payloadHash}});
  }
  state_.writerDeviceKeyId = keyId;
  ++state_.acceptedSubmissions;
  const std::string answer = Json{{"receipt", {{"requestId", requestId}, {"writerEpoch", state_.writerEpoch},
                                               {"deviceKeyId", keyId}, {"accepted", accepted}}}}
                                 .dump();
  receipts_[requestId] = {bodyHash, answer};
  return {200, answer};
}

LoopbackEvidenceService::Answer LoopbackEvidenceService::transfer(const Json& request) {
  const Json& plan = request.at("request").at("plan");
  const std::string keyId = plan.at("deviceKeyId").get<std::string>();
  if (auto refused = consumeChallenge(plan, "transferEvidenceWriter")) return *refused;
  const std::string signedText = "kovi.v6.writer-transfer.v1\n" +
                                 canonicalOf(plan, {"reference", "requestId", "deviceKeyId", "expectedEpoch",
                                                    "challengeId", "challenge", "policyId"});
  if (auto refused = checkAssertion(keyId, signedText, request.at("request").at("assertion"))) return *refused;
  if (plan.at("expectedEpoch") != state_.writerEpoch) return {409, refusal("walking_evidence_writer_epoch_stale")};
  state_.writerDeviceKeyId = keyId;
  return {200, Json{{"receipt", {{"requestId", plan.at("requestId")}, {"reference", plan.at("reference")},
                                 {"deviceKeyId", keyId}, {"writerEpoch", ++state_.writerEpoch},
                                 {"acceptedAt", now()}}}}
                   .dump()};
}

}  // namespace kovi::testing
