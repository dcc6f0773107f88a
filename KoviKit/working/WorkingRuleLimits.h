#pragma once

#include <cstddef>
#include <cstdint>

namespace kovi {

// The bounds of a valid working rule set. The common ceiling of a duration is
// 366 days; a kovi lasts at most 366 days and has at most one window per day.
inline constexpr std::int64_t kWorkingDurationCeilingSeconds = 31'622'400;
inline constexpr std::int64_t kWorkingLongestKoviMillis = 31'622'400'000;
inline constexpr std::int64_t kWorkingLatestInstant = 8'640'000'000'000'000;
inline constexpr std::int64_t kWorkingDayMillis = 86'400'000;
inline constexpr std::size_t kWorkingMaximumDays = 366;
inline constexpr std::size_t kWorkingMaximumWindows = 1000;
inline constexpr std::size_t kWorkingMaximumRanks = 100;
inline constexpr std::int64_t kWorkingMaximumSessionsPerDay = 1000;
inline constexpr std::int64_t kWorkingMaximumBypassUses = 100;
inline constexpr std::int64_t kWorkingLongestTieBucketSeconds = 3600;
// A late start may be forgiven for at most one day: a longer grace would let
// a late starter skip a whole kovi day.
inline constexpr std::int64_t kWorkingLongestStartGraceSeconds = 86'400;

// Beyond these the rule format is valid but this version cannot apply it.
inline constexpr std::int64_t kWorkingLongestSupportedIdleSeconds = 86'400;
inline constexpr std::int64_t kWorkingLongestSupportedPomodoroSeconds = 86'400;
inline constexpr std::int64_t kWorkingLongestSupportedHardWindowSeconds = 604'800;

// Shares are basis points of the pool.
inline constexpr std::int64_t kWorkingWholePoolBps = 10'000;

}  // namespace kovi
