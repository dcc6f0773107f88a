#include "KoviKit/evidence/AttestedEvidenceEnvelope.h"

#include <algorithm>

#include "KoviKit/foundation/CanonicalJsonWriter.h"

namespace kovi {
namespace {

bool isLowerHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

bool isRegistryAddress(std::string_view text) {
  const auto isHexDigit = [](char c) { return isLowerHexDigit(c) || (c >= 'A' && c <= 'F'); };
  return text.size() == 42 && text.starts_with("0x") && std::all_of(text.begin() + 2, text.end(), isHexDigit);
}

// The on-chain kovi number: decimal digits without a leading zero.
bool isKoviNumber(std::string_view text) {
  return !text.empty() && text.size() <= 78 && (text == "0" || text.front() != '0') &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

void writeIntegers(CanonicalJsonWriter& writer, std::string_view key, const std::vector<std::int64_t>& values) {
  writer.key(key).beginArray();
  for (const std::int64_t value : values) writer.value(value);
  writer.endArray();
}

}  // namespace

bool isEvidenceHex(std::string_view text) {
  return text.size() >= 64 && text.size() <= 256 && std::all_of(text.begin(), text.end(), isLowerHexDigit);
}

std::string AttestedEvidenceEnvelope::canonicalText() const {
  CanonicalJsonWriter writer;
  writer.reserve(1024);
  writer.beginObject();
  writer.key("protocolVersion").value(protocolVersion);
  writer.key("purpose").value(enumName(purpose));
  writer.key("appIdentity").value(appIdentity);
  writer.key("environment").value(enumName(environment));
  writer.key("financialActorId").value(financialActorId);
  writer.key("deviceKeyId").value(deviceKeyId);
  writer.key("writerEpoch").value(writerEpoch);
  writer.key("chainId").value(chainId);
  writer.key("registryAddress").value(registryAddress);
  writer.key("koviId").value(koviId);
  writer.key("rulesHash").value(rulesHash);
  writer.key("requestId").value(requestId);
  writer.key("challengeId").value(challengeId);
  writer.key("challenge").value(challenge);
  writeIntegers(writer, "windowIds", windowIds);
  writeIntegers(writer, "expectedRevisions", expectedRevisions);
  writeIntegers(writer, "measurementCutoffs", measurementCutoffs);
  writer.key("evidencePayloadHash").value(evidencePayloadHash);
  writer.key("issuedAt").value(issuedAt);
  writer.key("expiresAt").value(expiresAt);
  writer.endObject();
  return writer.take();
}

Sha256Digest AttestedEvidenceEnvelope::clientDataHash() const { return sha256(canonicalText()); }

Decoded<void> AttestedEvidenceEnvelope::validate() const {
  const auto refuse = [](std::string_view field, std::string reason) {
    return std::unexpected(DecodeError{std::string(field), std::move(reason)});
  };
  if (protocolVersion != kProtocolVersion) return refuse("protocolVersion", "must be 2");
  if (!isEvidenceHex(rulesHash)) return refuse("rulesHash", "expected 64 to 256 lowercase hex digits");
  if (!isEvidenceHex(evidencePayloadHash)) {
    return refuse("evidencePayloadHash", "expected 64 to 256 lowercase hex digits");
  }
  if (!isRegistryAddress(registryAddress)) return refuse("registryAddress", "expected 0x and 40 hex digits");
  if (!isKoviNumber(koviId)) return refuse("koviId", "expected a decimal number without leading zeros");
  if (windowIds.empty()) return refuse("windowIds", "expected at least one day");
  if (expectedRevisions.size() != windowIds.size()) {
    return refuse("expectedRevisions", "expected one revision per entry of windowIds");
  }
  if (measurementCutoffs.size() != windowIds.size()) {
    return refuse("measurementCutoffs", "expected one cutoff per entry of windowIds");
  }
  for (std::size_t index = 0; index < windowIds.size(); ++index) {
    if (windowIds[index] < 0) return refuse("windowIds[" + std::to_string(index) + "]", "a day index is never negative");
    if (expectedRevisions[index] < 0) {
      return refuse("expectedRevisions[" + std::to_string(index) + "]", "a revision is never negative");
    }
  }
  if (expiresAt < issuedAt) return refuse("expiresAt", "expires before it is issued");
  return {};
}

std::string entriesJson(const std::vector<V6WalkingBucketEntry>& entries) {
  CanonicalJsonWriter writer;
  writer.beginArray();
  for (const auto& entry : entries) entry.write(writer);
  writer.endArray();
  return writer.take();
}

std::string evidencePayloadHash(const std::vector<V6WalkingBucketEntry>& entries) {
  return sha256Hex(entriesJson(entries));
}

}  // namespace kovi
