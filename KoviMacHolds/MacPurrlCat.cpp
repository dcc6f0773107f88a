#include "KoviMacHolds/MacPurrlCat.h"

#include <algorithm>

#include "KoviKit/purrl/PurrlCatIdentity.h"

namespace kovi::holds {

std::string MacPurrlCat::stillImageName() const { return "mascot_still_" + std::string(enumName(pose)); }

std::string_view purrlCatStageForLevel(long long level) {
  const auto last = static_cast<long long>(kPurrlCatStages.size()) - 1;
  return kPurrlCatStages[static_cast<std::size_t>(std::clamp(level, 0LL, last))];
}

std::optional<std::string> purrlCatStage(const KeyValueStore& preferences) {
  const auto level = preferences.value(PurrlCatIdentity::levelKey);
  if (!level || !level->is_number_integer()) return std::nullopt;
  return std::string(purrlCatStageForLevel(level->get<long long>()));
}

}  // namespace kovi::holds
