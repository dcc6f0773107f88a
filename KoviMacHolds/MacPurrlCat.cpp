#include "KoviMacHolds/MacPurrlCat.h"

#include <algorithm>

namespace kovi::holds {

std::string MacPurrlCat::stillImageName() const { return "mascot_still_" + std::string(enumName(pose)); }

std::string_view purrlCatStageForLevel(long long level) {
  const auto last = static_cast<long long>(kPurrlCatStages.size()) - 1;
  return kPurrlCatStages[static_cast<std::size_t>(std::clamp(level, 0LL, last))];
}

}  // namespace kovi::holds
