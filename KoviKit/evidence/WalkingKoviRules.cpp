#include "KoviKit/evidence/WalkingKoviRules.h"

#include <algorithm>

#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

template <NamedEnum E>
void writeEnum(CanonicalJsonWriter& writer, std::string_view key, E value) {
  writer.key(key).value(enumName(value));
}

template <class T>
void writeOptional(CanonicalJsonWriter& writer, std::string_view key, const std::optional<T>& value) {
  if (!value) return;
  if constexpr (NamedEnum<T>) {
    writeEnum(writer, key, *value);
  } else {
    writer.key(key).value(*value);
  }
}

void writeWindows(CanonicalJsonWriter& writer, const std::vector<WalkingDayWindow>& windows) {
  writer.key("dayWindows").beginArray();
  for (const WalkingDayWindow& window : windows) {
    writer.beginObject().key("start").value(window.start).key("end").value(window.end).endObject();
  }
  writer.endArray();
}

}  // namespace

// The canonical form is what the service hashes, so it must come out the same
// byte for byte everywhere: the keys in declared order, no whitespace,
// integers as bare digits, strings with only the escapes JSON requires (the
// writer's rules). Optional fields without a value are left out entirely —
// never written as null — so adding an optional field to the record does not
// change the hash of rule sets that do not use it.
std::string WalkingKoviRules::canonicalJson() const {
  CanonicalJsonWriter writer;
  writer.reserve(256);
  writer.beginObject();
  writeEnum(writer, "mode", mode);
  writeOptional(writer, "goalMode", goalMode);
  writeOptional(writer, "raceMode", raceMode);
  writer.key("durationDays").value(durationDays);
  writeOptional(writer, "stepTarget", stepTarget);
  writeOptional(writer, "requiredSuccessfulDays", requiredSuccessfulDays);
  writeOptional(writer, "minimumEligibility", minimumEligibility);
  writeOptional(writer, "failurePolicy", failurePolicy);
  writer.key("exitPenaltyBps").value(exitPenaltyBps);
  writeEnum(writer, "payoutRule", payoutRule);
  writer.key("rankPayoutsBps").beginArray();
  for (const int share : rankPayoutsBps) writer.value(share);
  writer.endArray();
  writer.key("verificationWindowHours").value(verificationWindowHours);
  writeOptional(writer, "dayBoundary", dayBoundary);
  writeOptional(writer, "timezone", timezone);
  if (dayWindows) writeWindows(writer, *dayWindows);
  writeOptional(writer, "firstDay", firstDay);
  writer.endObject();
  return writer.take();
}

std::string WalkingKoviRules::rulesHash() const { return sha256Hex(canonicalJson()); }

namespace {

constexpr std::size_t kMostRanks = 100;
constexpr int kWholePoolBps = 10000;

Decoded<void> refuse(const JsonView& json, std::string_view key, std::string reason) {
  return std::unexpected(DecodeError{json.child(key, json.json()).path(), std::move(reason)});
}

// The sub-mode key that belongs to `mode` must be set and the other absent.
Decoded<void> checkModes(const WalkingKoviRules& rules, const JsonView& json) {
  const bool goal = rules.mode == WalkingKoviRules::Mode::goal;
  if (goal && !rules.goalMode) return refuse(json, "goalMode", "required in goal mode");
  if (goal && rules.raceMode) return refuse(json, "raceMode", "only for race mode");
  if (!goal && !rules.raceMode) return refuse(json, "raceMode", "required in race mode");
  if (!goal && rules.goalMode) return refuse(json, "goalMode", "only for goal mode");
  return {};
}

Decoded<void> checkCounts(const WalkingKoviRules& rules, const JsonView& json) {
  if (rules.durationDays < 1 || rules.durationDays > kWalkingLongestKoviDays) {
    return refuse(json, "durationDays", "must be 1 to " + std::to_string(kWalkingLongestKoviDays));
  }
  if (rules.requiredSuccessfulDays &&
      (*rules.requiredSuccessfulDays < 1 || *rules.requiredSuccessfulDays > rules.durationDays)) {
    return refuse(json, "requiredSuccessfulDays", "must be 1 to durationDays (" + std::to_string(rules.durationDays) + ")");
  }
  for (const auto& [key, value] : {std::pair{"stepTarget", rules.stepTarget},
                                   std::pair{"minimumEligibility", rules.minimumEligibility}}) {
    if (value && *value < 0) return refuse(json, key, "must not be negative");
  }
  if (rules.exitPenaltyBps < 0 || rules.exitPenaltyBps > kWholePoolBps) {
    return refuse(json, "exitPenaltyBps", "must be 0 to 10000");
  }
  if (rules.verificationWindowHours < 0) return refuse(json, "verificationWindowHours", "must not be negative");
  return {};
}

Decoded<void> checkPayout(const WalkingKoviRules& rules, const JsonView& json) {
  const auto& shares = rules.rankPayoutsBps;
  if (std::ranges::any_of(shares, [](int share) { return share < 1 || share > kWholePoolBps; })) {
    return refuse(json, "rankPayoutsBps", "each share must be 1 to 10000");
  }
  if (rules.payoutRule != WalkingKoviRules::PayoutRule::ranked) return {};
  std::int64_t total = 0;
  for (const int share : shares) total = checkedAdd(total, std::int64_t{share});
  if (shares.empty() || shares.size() > kMostRanks || total != kWholePoolBps) {
    return refuse(json, "rankPayoutsBps", "a ranked payout needs 1 to 100 shares totalling 10000");
  }
  return {};
}

}  // namespace

Decoded<void> JsonRecordFields<WalkingKoviRules>::validate(const WalkingKoviRules& rules, const JsonView& json) {
  for (const auto check : {checkModes, checkCounts, checkPayout}) {
    if (auto valid = check(rules, json); !valid) return valid;
  }
  return {};
}

}  // namespace kovi
