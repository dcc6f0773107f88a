#include "KoviKit/evidence/V6WalkingSubmission.h"

#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

void writeRecord(CanonicalJsonWriter& writer, std::string_view name, const nlohmann::ordered_json& record) {
  // Records of fixed shape with integers and strings only: a refusal is a
  // programming error, not something a caller could handle.
  if (auto written = writeCanonicalJson(writer, record, name); !written) trap(written.error());
}

Decoded<V6WalkingBucketEntry> decodeEntry(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"day", "expectedRevision", "observation"}); !keys) {
    return std::unexpected(keys.error());
  }
  V6WalkingBucketEntry entry;
  auto day = json.get<int>("day");
  if (!day) return std::unexpected(day.error());
  auto revision = json.get<std::int64_t>("expectedRevision");
  if (!revision) return std::unexpected(revision.error());
  auto observation = json.get<V6WalkingObservation>("observation");
  if (!observation) return std::unexpected(observation.error());
  return V6WalkingBucketEntry{*day, *revision, std::move(*observation)};
}

}  // namespace

void V6WalkingSubmission::write(CanonicalJsonWriter& writer) const {
  writer.beginObject();
  writer.key("action").value(action);
  writer.key("reference").value(reference);
  writer.key("envelope");
  writeRecord(writer, "envelope", encodeRecord(envelope));
  writer.key("assertion");
  writeRecord(writer, "assertion", encodeRecord(assertion));
  writer.key("entries").beginArray();
  for (const auto& entry : entries) entry.write(writer);
  writer.endArray();
  writer.endObject();
}

std::string V6WalkingSubmission::json() const {
  CanonicalJsonWriter writer;
  write(writer);
  return writer.take();
}

Decoded<V6WalkingSubmission> JsonDecoder<V6WalkingSubmission>::decode(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"action", "reference", "envelope", "assertion", "entries"}); !keys) {
    return std::unexpected(keys.error());
  }
  V6WalkingSubmission submission;
  auto action = json.get<std::string>("action");
  if (!action) return std::unexpected(action.error());
  if (*action != V6WalkingSubmission::kAction) {
    return std::unexpected(DecodeError{"action", "expected \"submitWalkingEvidence\""});
  }
  auto reference = json.get<std::string>("reference");
  if (!reference) return std::unexpected(reference.error());
  auto envelope = json.get<AttestedEvidenceEnvelope>("envelope");
  if (!envelope) return std::unexpected(envelope.error());
  if (auto valid = envelope->validate(); !valid) {
    return std::unexpected(DecodeError{"envelope." + valid.error().path, valid.error().reason});
  }
  auto assertion = json.get<AppAttestAssertion>("assertion");
  if (!assertion) return std::unexpected(assertion.error());
  auto entries = json.member("entries");
  if (!entries) return std::unexpected(entries.error());
  auto items = entries->elements();
  if (!items) return std::unexpected(items.error());
  for (const JsonView& item : *items) {
    auto entry = decodeEntry(item);
    if (!entry) return std::unexpected(entry.error());
    submission.entries.push_back(std::move(*entry));
  }
  submission.reference = std::move(*reference);
  submission.envelope = std::move(*envelope);
  submission.assertion = std::move(*assertion);
  return submission;
}

}  // namespace kovi
