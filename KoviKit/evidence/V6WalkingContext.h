#pragma once

#include <cstdint>
#include <expected>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingEvidenceError.h"
#include "KoviKit/evidence/WalkingKoviRules.h"

namespace kovi {

// What the service returns for one member of one walking kovi.
struct V6WalkingContext {
  // The server's accepted revision of one day.
  struct Revision {
    int day = 0;
    std::int64_t revision = 0;
    std::string payloadHash;
    std::optional<UnixMillis> acceptedAt;
    // The shared check-in summary, passed through as is.
    nlohmann::json summary;
    bool operator==(const Revision&) const = default;
  };

  std::string reference;
  std::string financialActorId;
  std::string rulesHash;
  WalkingKoviRules rules;
  int status = 0;
  std::string sourcePolicy;
  std::vector<HealthEvidenceDayWindow> windows;
  std::int64_t writerEpoch = 0;
  // The device key currently allowed to write evidence for this member.
  std::optional<std::string> writerDeviceKeyId;
  UnixMillis evidenceClosesAt = 0;
  UnixMillis serverNow = 0;
  std::int64_t acceptedTotalSteps = 0;
  std::vector<Revision> revisions;

  bool operator==(const V6WalkingContext&) const = default;

  // The server's revision of `day`, if it holds one.
  const Revision* revisionOf(int day) const;

  // Refuses a context whose `rulesHash` is not the hash of its `rules`
  // ("walking_rules_hash_mismatch"): the rules shown and judged here must be
  // the ones the member consented to. Hex digits compare without case.
  std::expected<void, WalkingEvidenceError> verifyRulesHash() const;
};

// Whether two hex digests are the same, whatever the case of their letters.
bool sameHexDigest(std::string_view a, std::string_view b);

// Wire records: unknown keys are ignored; the embedded rules stay strict.
template <>
struct JsonRecordFields<HealthEvidenceDayWindow> : LenientJsonRecord {
  using W = HealthEvidenceDayWindow;
  static constexpr auto fields = std::tuple{field("day", &W::day), field("start", &W::start), field("end", &W::end)};
};

template <>
struct JsonRecordFields<V6WalkingContext::Revision> : LenientJsonRecord {
  using R = V6WalkingContext::Revision;
  static constexpr auto fields =
      std::tuple{field("day", &R::day), field("revision", &R::revision), field("payloadHash", &R::payloadHash),
                 field("acceptedAt", &R::acceptedAt), field("summary", &R::summary)};
};

template <>
struct JsonRecordFields<V6WalkingContext> : LenientJsonRecord {
  using C = V6WalkingContext;
  static constexpr auto fields = std::tuple{
      field("reference", &C::reference),
      field("financialActorId", &C::financialActorId),
      field("rulesHash", &C::rulesHash),
      field("rules", &C::rules),
      field("status", &C::status),
      field("sourcePolicy", &C::sourcePolicy),
      field("windows", &C::windows),
      field("writerEpoch", &C::writerEpoch),
      field("writerDeviceKeyId", &C::writerDeviceKeyId),
      field("evidenceClosesAt", &C::evidenceClosesAt),
      field("serverNow", &C::serverNow),
      field("acceptedTotalSteps", &C::acceptedTotalSteps),
      field("revisions", &C::revisions)};
};

}  // namespace kovi
