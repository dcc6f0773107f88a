#include "KoviKit/working/WorkingPoolApportionment.h"

#include <algorithm>
#include <numeric>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {

std::vector<std::int64_t> apportionWorkingPool(const std::vector<WorkingPoolClaim>& claims, std::int64_t whole) {
  std::vector<std::int64_t> points(claims.size(), 0);
  std::int64_t handedOut = 0;
  for (std::size_t index = 0; index < claims.size(); ++index) {
    points[index] = claims[index].numerator / claims[index].denominator;
    handedOut = checkedAdd(handedOut, points[index]);
  }
  // Each claim lost less than one point to its floor, so the leftover is
  // smaller than the number of claims.
  const auto leftover = static_cast<std::size_t>(std::clamp<std::int64_t>(
      whole - handedOut, 0, static_cast<std::int64_t>(claims.size())));

  std::vector<std::size_t> byRemainder(claims.size());
  std::iota(byRemainder.begin(), byRemainder.end(), std::size_t{0});
  std::ranges::sort(byRemainder, [&](std::size_t left, std::size_t right) {
    const WorkingPoolClaim& a = claims[left];
    const WorkingPoolClaim& b = claims[right];
    // a's fraction > b's fraction, compared without division.
    const std::int64_t aSide = checkedMul(a.numerator % a.denominator, b.denominator);
    const std::int64_t bSide = checkedMul(b.numerator % b.denominator, a.denominator);
    if (aSide != bSide) return aSide > bSide;
    return a.order < b.order;
  });
  for (std::size_t handed = 0; handed < leftover; ++handed) ++points[byRemainder[handed]];
  return points;
}

}  // namespace kovi
