#include "KoviKit/evidence/V6WalkingContext.h"

#include <algorithm>
#include <cctype>

#include "KoviKit/foundation/JsonFields.h"

namespace kovi {

bool sameHexDigest(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

const V6WalkingContext::Revision* V6WalkingContext::revisionOf(int day) const {
  const auto found = std::ranges::find(revisions, day, &Revision::day);
  return found == revisions.end() ? nullptr : &*found;
}

std::expected<void, WalkingEvidenceError> V6WalkingContext::verifyRulesHash() const {
  const std::string expected = rules.rulesHash();
  if (sameHexDigest(rulesHash, expected)) return {};
  return std::unexpected(WalkingEvidenceError{std::string(walkingErrorCode::rulesHashMismatch),
                                              "the context names rules hash " + rulesHash +
                                                  " but its rules hash to " + expected});
}

Decoded<HealthEvidenceDayWindow> JsonDecoder<HealthEvidenceDayWindow>::decode(const JsonView& json) {
  HealthEvidenceDayWindow window;
  if (auto read = readFields(json, field("day", window.day), field("start", window.start), field("end", window.end));
      !read) {
    return std::unexpected(read.error());
  }
  return window;
}

Decoded<V6WalkingContext::Revision> JsonDecoder<V6WalkingContext::Revision>::decode(const JsonView& json) {
  V6WalkingContext::Revision revision;
  auto read = readFields(json, field("day", revision.day), field("revision", revision.revision),
                         field("payloadHash", revision.payloadHash), field("acceptedAt", revision.acceptedAt));
  if (!read) return std::unexpected(read.error());
  if (json.contains("summary")) revision.summary = json.json().at("summary");
  return revision;
}

Decoded<V6WalkingContext> JsonDecoder<V6WalkingContext>::decode(const JsonView& json) {
  V6WalkingContext context;
  auto read = readFields(
      json, field("reference", context.reference), field("financialActorId", context.financialActorId),
      field("rulesHash", context.rulesHash), field("rules", context.rules), field("status", context.status),
      field("sourcePolicy", context.sourcePolicy), field("windows", context.windows),
      field("writerEpoch", context.writerEpoch), field("writerDeviceKeyId", context.writerDeviceKeyId),
      field("evidenceClosesAt", context.evidenceClosesAt), field("serverNow", context.serverNow),
      field("acceptedTotalSteps", context.acceptedTotalSteps), field("revisions", context.revisions));
  if (!read) return std::unexpected(read.error());
  return context;
}

}  // namespace kovi
