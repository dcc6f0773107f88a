#include "KoviKit/purrl/PurrlFocusMockCalendar.h"

#include <cstdint>

namespace kovi {
namespace {

// How far `later` lies after `earlier`. The unsigned difference of the two
// values is exact for any pair of instants, so an extreme `at` from the
// service can neither overflow nor wrap into the window.
std::uint64_t millisBetween(UnixMillis earlier, UnixMillis later) {
  return static_cast<std::uint64_t>(later) - static_cast<std::uint64_t>(earlier);
}

}  // namespace

bool PurrlFocusMockNext::canStart(UnixMillis now) const {
  if (started) return false;
  if (now < at) return millisBetween(now, at) <= static_cast<std::uint64_t>(kEarliestBeforeMillis);
  return millisBetween(at, now) <= static_cast<std::uint64_t>(kLatestAfterMillis);
}

}  // namespace kovi
