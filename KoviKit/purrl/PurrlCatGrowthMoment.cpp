#include "KoviKit/purrl/PurrlCatGrowthMoment.h"

#include <algorithm>
#include <tuple>

#include "KoviKit/purrl/PurrlCatGrowthRules.h"

namespace kovi {
namespace {

// Where a showable reward goes in a moment: stages, then tricks, then items,
// each in catalogue order.
std::tuple<int, int> momentOrder(const PurrlCatGrowthReward& reward) {
  if (reward.kind == "stage") return {0, PurrlCatGrowthRules::stagePosition(reward.ref).value_or(0)};
  if (reward.kind == "trick") return {1, PurrlCatGrowthRules::trickPosition(reward.ref)};
  return {2, PurrlCatGrowthRules::itemPosition(reward.ref)};
}

}  // namespace

std::optional<PurrlCatGrowthMoment> PurrlCatGrowthMoment::seenAfter(const std::set<std::string, std::less<>>& seen,
                                                                    const std::optional<PurrlCatGrowth>& growth) {
  if (!growth) return std::nullopt;
  std::vector<const PurrlCatGrowthReward*> fresh;
  for (const PurrlCatGrowthReward& reward : growth->rewards) {
    if (PurrlCatGrowthRules::isShowable(reward) && !seen.contains(reward.id)) fresh.push_back(&reward);
  }
  if (fresh.empty()) return std::nullopt;
  std::ranges::stable_sort(fresh, {}, [](const PurrlCatGrowthReward* reward) { return momentOrder(*reward); });

  PurrlCatGrowthMoment moment;
  moment.daysTogether = growth->daysTogether;
  for (const PurrlCatGrowthReward* reward : fresh) {
    if (reward->kind == "stage") {
      const int level = PurrlCatGrowthRules::stagePosition(reward->ref).value_or(0);
      // Stages arrive in growth order, so the first sets where the moment starts.
      if (!moment.fromLevel) moment.fromLevel = level - 1;
      moment.toLevel = level;
    } else if (reward->kind == "trick") {
      moment.tricks.push_back(reward->ref);
    } else {
      moment.items.push_back(reward->ref);
    }
    moment.rewardIDs.push_back(reward->id);
  }
  return moment;
}

PurrlCatGrowthMoment::Lead PurrlCatGrowthMoment::lead() const {
  if (fromLevel && toLevel) return GrowUp{*fromLevel, *toLevel};
  if (!tricks.empty()) return Trick{tricks.front()};
  if (!items.empty()) return Item{items.front()};
  return Item{};
}

std::vector<std::string> PurrlCatGrowthMoment::furtherTricks() const {
  const Lead headline = lead();
  const Trick* leadTrick = std::get_if<Trick>(&headline);
  if (leadTrick == nullptr) return tricks;
  std::vector<std::string> further;
  std::ranges::copy_if(tricks, std::back_inserter(further),
                       [&](const std::string& trick) { return trick != leadTrick->id; });
  return further;
}

}  // namespace kovi
