#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "KoviKit/purrl/PurrlCatGrowth.h"
#include "KoviKit/purrl/PurrlCatMood.h"

namespace kovi {

// What this client knows of the cat: the catalogue it can draw, the mood rule
// and the filter that keeps rewards it cannot draw off the screen.
namespace PurrlCatGrowthRules {

// Stages in growth order; a stage's position is also the level it stands for.
inline constexpr std::array<std::string_view, 3> stages{"kitten", "young", "grown"};
// Tricks in the order screens list them.
inline constexpr std::array<std::string_view, 8> tricks{"talk",      "wave",     "catwalk", "stretch",
                                                        "head_tilt", "play_bow", "smug",    "study"};
inline constexpr std::array<std::string_view, 1> items{"silver_chain"};

// The mood for the facts of the moment. Pure: the caller supplies the hour.
PurrlCatMoodResult mood(const PurrlCatMoodInputs& inputs);

// Whether this client can show `reward`: stages "young" and "grown" (every cat
// starts as a kitten, so reaching "kitten" is never celebrated), the known
// tricks and the known items. Newer kinds and references stay hidden.
bool isShowable(const PurrlCatGrowthReward& reward);

// A trick's place in the trick list; unknown identifiers sort after all known
// ones, at position 8.
int trickPosition(std::string_view trick);
// A stage's place in growth order; nullopt for a stage this client does not know.
std::optional<int> stagePosition(std::string_view stage);
// An item's place in the item list; unknown items sort after the known ones.
int itemPosition(std::string_view item);

}  // namespace PurrlCatGrowthRules
}  // namespace kovi
