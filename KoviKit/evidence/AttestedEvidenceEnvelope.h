#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/AppAttestPurpose.h"
#include "KoviKit/evidence/V6WalkingBucketEntry.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// What the device key signs for a walking submission: who signs (app, key,
// writer generation), for which kovi (chain, registry, kovi number, rules),
// under which challenge, which days at which revisions and cutoffs, and the
// hash of the day entries sent beside it. Instants are Unix milliseconds.
struct AttestedEvidenceEnvelope {
  static constexpr std::int64_t kProtocolVersion = 2;

  std::int64_t protocolVersion = kProtocolVersion;
  AppAttestPurpose purpose = AppAttestPurpose::submitWalkingEvidence;
  std::string appIdentity;
  AppAttestEnvironment environment = AppAttestEnvironment::development;
  std::string financialActorId;
  // The service's identifier of the signing key.
  std::string deviceKeyId;
  std::int64_t writerEpoch = 0;
  std::int64_t chainId = 0;
  std::string registryAddress;
  std::string koviId;
  std::string rulesHash;
  std::string requestId;
  std::string challengeId;
  std::string challenge;
  std::vector<std::int64_t> windowIds;
  std::vector<std::int64_t> expectedRevisions;
  std::vector<std::int64_t> measurementCutoffs;
  std::string evidencePayloadHash;
  UnixMillis issuedAt = 0;
  UnixMillis expiresAt = 0;

  bool operator==(const AttestedEvidenceEnvelope&) const = default;

  // The canonical text, written field by field so that this device and the
  // service hash the same bytes: no whitespace, keys in the order above,
  // integers in decimal, strings as minimal JSON string literals.
  std::string canonicalText() const;
  // SHA-256 of the canonical text: the client data the device key asserts.
  Sha256Digest clientDataHash() const;

  // Checks what the service checks before it hashes: the protocol version,
  // hex hashes, the registry address and kovi number, and three day arrays of
  // one length. The error names the field.
  Decoded<void> validate() const;
};

template <>
struct JsonRecordFields<AttestedEvidenceEnvelope> : StrictJsonRecord {
  using E = AttestedEvidenceEnvelope;
  static constexpr auto fields = std::tuple{
      field("protocolVersion", &E::protocolVersion), field("purpose", &E::purpose),
      field("appIdentity", &E::appIdentity),         field("environment", &E::environment),
      field("financialActorId", &E::financialActorId), field("deviceKeyId", &E::deviceKeyId),
      field("writerEpoch", &E::writerEpoch),         field("chainId", &E::chainId),
      field("registryAddress", &E::registryAddress), field("koviId", &E::koviId),
      field("rulesHash", &E::rulesHash),             field("requestId", &E::requestId),
      field("challengeId", &E::challengeId),         field("challenge", &E::challenge),
      field("windowIds", &E::windowIds),             field("expectedRevisions", &E::expectedRevisions),
      field("measurementCutoffs", &E::measurementCutoffs), field("evidencePayloadHash", &E::evidencePayloadHash),
      field("issuedAt", &E::issuedAt),               field("expiresAt", &E::expiresAt)};
};

// Whether `text` is lowercase hex of 64 to 256 digits, the form every hash
// and key value of the evidence exchange takes.
bool isEvidenceHex(std::string_view text);

// The payload hash an envelope carries: lowercase hex SHA-256 of the entries
// array as sent, in canonical JSON.
std::string evidencePayloadHash(const std::vector<V6WalkingBucketEntry>& entries);
std::string entriesJson(const std::vector<V6WalkingBucketEntry>& entries);

}  // namespace kovi
