// Feeds arbitrary bytes to the cat's growth decoding, as they would arrive
// from the service or from `kovi cat moment --growth`, and through everything
// that follows a successful decode: the JSON form must decode back to the
// same growth, and the growth moment with its lead must build for any seen set.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include "KoviKit/purrl/PurrlCatGrowthMoment.h"

namespace {

kovi::PurrlCatGrowth withoutTimestamps(kovi::PurrlCatGrowth growth) {
  for (auto& trick : growth.tricks) {
    if (trick.learnedAt) trick.learnedAt = kovi::Date();
  }
  for (auto& reward : growth.rewards) reward.earnedAt = kovi::Date();
  return growth;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto growth = kovi::decodeJsonText<kovi::PurrlCatGrowth>(text);
  if (!growth) return 0;

  // The JSON form decodes back to the same growth. Timestamps are left out of
  // the comparison: seconds since 2001 and the milliseconds kept inside may
  // differ in the last bit of a double after a round trip.
  const auto again = kovi::decodeJsonText<kovi::PurrlCatGrowth>(kovi::encodeRecord(*growth).dump());
  if (!again || withoutTimestamps(*again) != withoutTimestamps(*growth)) std::abort();

  std::set<std::string, std::less<>> seen;
  if (const auto moment = kovi::PurrlCatGrowthMoment::seenAfter(seen, *growth)) {
    (void)moment->lead();
    (void)moment->furtherTricks();
    if (moment->rewardIDs.empty()) std::abort();
    seen.insert(moment->rewardIDs.begin(), moment->rewardIDs.end());
  }
  // Once shown, every showable reward has been celebrated.
  if (kovi::PurrlCatGrowthMoment::seenAfter(seen, *growth)) std::abort();
  return 0;
}
