#include "KoviKit/evidence/HealthEvidenceDayRead.h"

#include <algorithm>
#include <cmath>

namespace kovi {
namespace {

Decoded<Date> decodeInstant(const JsonView& json) {
  if (json.json().is_string()) {
    const auto parsed = parseInstant(json.json().get<std::string>());
    if (!parsed) return std::unexpected(json.error("expected an ISO 8601 instant with an offset"));
    return Date::fromUnixMillis(static_cast<double>(*parsed));
  }
  auto millis = json.as<double>();
  if (!millis) return std::unexpected(json.error("expected Unix milliseconds or an ISO 8601 instant"));
  if (!std::isfinite(*millis)) return std::unexpected(json.error("instant out of range"));
  return Date::fromUnixMillis(*millis);
}

}  // namespace

const HealthEvidenceDayRead* findDayRead(const std::vector<HealthEvidenceDayRead>& reads, int day) {
  const auto found = std::ranges::find(reads, day, &HealthEvidenceDayRead::day);
  return found == reads.end() ? nullptr : &*found;
}

Decoded<HealthEvidenceBucket> JsonDecoder<HealthEvidenceBucket>::decode(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"start", "end", "amount", "provisional"}); !keys) {
    return std::unexpected(keys.error());
  }
  HealthEvidenceBucket bucket;
  for (auto [key, target] : {std::pair{"start", &bucket.start}, std::pair{"end", &bucket.end}}) {
    auto member = json.member(key);
    if (!member) return std::unexpected(member.error());
    auto instant = decodeInstant(*member);
    if (!instant) return std::unexpected(instant.error());
    *target = *instant;
  }
  auto amount = json.get<double>("amount");
  if (!amount) return std::unexpected(amount.error());
  auto provisional = json.getOptional<bool>("provisional");
  if (!provisional) return std::unexpected(provisional.error());
  bucket.amount = *amount;
  bucket.provisional = provisional->value_or(false);
  return bucket;
}

Decoded<HealthEvidenceDayRead> JsonDecoder<HealthEvidenceDayRead>::decode(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"day", "outcome", "buckets"}); !keys) return std::unexpected(keys.error());
  auto day = json.get<int>("day");
  if (!day) return std::unexpected(day.error());
  auto outcome = json.get<HealthEvidenceReadOutcome>("outcome");
  if (!outcome) return std::unexpected(outcome.error());
  // A read without buckets (any outcome but `measured`) may leave them out.
  auto buckets = json.getOptional<std::vector<HealthEvidenceBucket>>("buckets");
  if (!buckets) return std::unexpected(buckets.error());
  return HealthEvidenceDayRead{*day, *outcome, std::move(*buckets).value_or(std::vector<HealthEvidenceBucket>{})};
}

}  // namespace kovi
