#include "KoviKit/evidence/WalkingKoviRules.h"

#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/JsonFields.h"
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

Decoded<WalkingDayWindow> JsonDecoder<WalkingDayWindow>::decode(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"start", "end"}); !keys) return std::unexpected(keys.error());
  WalkingDayWindow window;
  if (auto read = readFields(json, field("start", window.start), field("end", window.end)); !read) {
    return std::unexpected(read.error());
  }
  return window;
}

Decoded<WalkingKoviRules> JsonDecoder<WalkingKoviRules>::decode(const JsonView& json) {
  auto keys = json.requireOnlyKeys({"mode", "goalMode", "raceMode", "durationDays", "stepTarget",
                                    "requiredSuccessfulDays", "minimumEligibility", "failurePolicy",
                                    "exitPenaltyBps", "payoutRule", "rankPayoutsBps", "verificationWindowHours",
                                    "dayBoundary", "timezone", "dayWindows", "firstDay"});
  if (!keys) return std::unexpected(keys.error());
  WalkingKoviRules rules;
  auto read = readFields(json, field("mode", rules.mode), field("goalMode", rules.goalMode),
                         field("raceMode", rules.raceMode), field("durationDays", rules.durationDays),
                         field("stepTarget", rules.stepTarget),
                         field("requiredSuccessfulDays", rules.requiredSuccessfulDays),
                         field("minimumEligibility", rules.minimumEligibility),
                         field("failurePolicy", rules.failurePolicy), field("exitPenaltyBps", rules.exitPenaltyBps),
                         field("payoutRule", rules.payoutRule), field("rankPayoutsBps", rules.rankPayoutsBps),
                         field("verificationWindowHours", rules.verificationWindowHours),
                         field("dayBoundary", rules.dayBoundary), field("timezone", rules.timezone),
                         field("dayWindows", rules.dayWindows), field("firstDay", rules.firstDay));
  if (!read) return std::unexpected(read.error());
  return rules;
}

}  // namespace kovi
