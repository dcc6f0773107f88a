#pragma once

#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/purrl/PurrlCatGrowth.h"

namespace kovi {

// What changed in the cat's growth since the person last looked: the new
// rewards this client can show, gathered into one celebration.
struct PurrlCatGrowthMoment {
  // The headline of a moment.
  struct GrowUp {
    int from = 0;
    int to = 0;
    bool operator==(const GrowUp&) const = default;
  };
  struct Trick {
    std::string id;
    bool operator==(const Trick&) const = default;
  };
  struct Item {
    std::string id;
    bool operator==(const Item&) const = default;
  };
  using Lead = std::variant<GrowUp, Trick, Item>;

  std::optional<int> fromLevel;
  std::optional<int> toLevel;
  std::vector<std::string> tricks;     // tricks newly learned, in trick-list order
  std::vector<std::string> items;      // items newly earned
  std::vector<std::string> rewardIDs;  // the rewards that make up the moment
  int daysTogether = 0;
  bool operator==(const PurrlCatGrowthMoment&) const = default;

  // The moment made of the showable rewards of `growth` whose ids are not in
  // `seen`, or none when there is no growth or nothing new to show. Rewards
  // are taken stages first (in growth order), then tricks (in trick-list
  // order), then items. A grown-up moment runs from the level before the
  // lowest new stage to the level of the highest one, a stage's level being
  // its place in growth order (kitten 0, young 1, grown 2). The caller adds
  // `rewardIDs` to `seen` once the moment has been shown.
  static std::optional<PurrlCatGrowthMoment> seenAfter(const std::set<std::string, std::less<>>& seen,
                                                       const std::optional<PurrlCatGrowth>& growth);

  // The headline: growing up when both levels are present, else the first
  // trick, else the first item, else an item with an empty identifier.
  Lead lead() const;
  // The tricks shown under the lead: all but the one the lead names.
  std::vector<std::string> furtherTricks() const;
};

template <>
struct JsonRecordFields<PurrlCatGrowthMoment> : LenientJsonRecord {
  using R = PurrlCatGrowthMoment;
  static constexpr auto fields =
      std::tuple{field("fromLevel", &R::fromLevel), field("toLevel", &R::toLevel),
                 field("tricks", &R::tricks),       field("items", &R::items),
                 field("rewardIDs", &R::rewardIDs), field("daysTogether", &R::daysTogether)};
};

}  // namespace kovi
