#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kovi {

// One recipient's exact claim on the pool: numerator / denominator basis
// points (a rank group's shares split among its tied members, or the pool
// split equally). `order` breaks ties between equal remainders: the account
// ID or wallet address the rule set's rounding names.
struct WorkingPoolClaim {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;
  std::string order;
};

// Whole basis points for every claim by the largest-remainder method: each
// claim gets its whole part; the points left over go one each to the claims
// with the largest fractional parts, equal fractions in ascending `order`.
// The claims must add up exactly to `whole` (the pool's 10000 points); the
// results then add up to `whole` too.
std::vector<std::int64_t> apportionWorkingPool(const std::vector<WorkingPoolClaim>& claims, std::int64_t whole);

}  // namespace kovi
