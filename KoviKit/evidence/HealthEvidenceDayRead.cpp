#include "KoviKit/evidence/HealthEvidenceDayRead.h"

#include <algorithm>
#include <cmath>

#include "KoviKit/foundation/JsonFields.h"

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
  std::optional<bool> provisional;
  if (auto read = readFields(json, field("amount", bucket.amount), field("provisional", provisional)); !read) {
    return std::unexpected(read.error());
  }
  bucket.provisional = provisional.value_or(false);
  return bucket;
}

Decoded<HealthEvidenceDayRead> JsonDecoder<HealthEvidenceDayRead>::decode(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"day", "outcome", "buckets"}); !keys) return std::unexpected(keys.error());
  HealthEvidenceDayRead read;
  std::optional<std::vector<HealthEvidenceBucket>> buckets;
  auto fields = readFields(json, field("day", read.day), field("outcome", read.outcome), field("buckets", buckets));
  if (!fields) return std::unexpected(fields.error());
  read.buckets = std::move(buckets).value_or(std::vector<HealthEvidenceBucket>{});
  return read;
}

}  // namespace kovi
