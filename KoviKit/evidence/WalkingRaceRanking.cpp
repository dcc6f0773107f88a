#include "KoviKit/evidence/WalkingRaceRanking.h"

#include <algorithm>

namespace kovi {
namespace {

// A member's place in the order, smaller is better; nullopt when unranked.
std::optional<double> raceKey(const WalkingKoviRules& rules, const WalkingEvidenceEvaluation& evaluation) {
  if (rules.isRace(WalkingKoviRules::RaceMode::firstToTarget)) {
    if (!evaluation.reachedAt) return std::nullopt;
    return static_cast<double>(*evaluation.reachedAt);
  }
  if (rules.isRace(WalkingKoviRules::RaceMode::highestTotal)) {
    if (rules.minimumEligibility && evaluation.closedTotal < static_cast<double>(*rules.minimumEligibility)) {
      return std::nullopt;
    }
    return -evaluation.closedTotal;
  }
  return std::nullopt;
}

}  // namespace

std::vector<WalkingRaceStanding> rankWalkingRace(const WalkingKoviRules& rules,
                                                 std::span<const WalkingRaceEntrant> entrants) {
  struct Placed {
    const WalkingRaceEntrant* entrant;
    std::optional<double> key;
  };
  std::vector<Placed> placed;
  placed.reserve(entrants.size());
  for (const WalkingRaceEntrant& entrant : entrants) placed.push_back({&entrant, raceKey(rules, entrant.evaluation)});
  std::ranges::sort(placed, [](const Placed& a, const Placed& b) {
    if (a.key.has_value() != b.key.has_value()) return a.key.has_value();
    if (a.key && *a.key != *b.key) return *a.key < *b.key;
    return a.entrant->member < b.entrant->member;
  });

  std::vector<WalkingRaceStanding> standings;
  standings.reserve(placed.size());
  for (std::size_t index = 0; index < placed.size(); ++index) {
    std::optional<int> rank;
    if (placed[index].key) {
      const bool tiesPrevious = index > 0 && placed[index - 1].key == placed[index].key;
      rank = tiesPrevious ? standings.back().rank : std::optional<int>(static_cast<int>(index) + 1);
    }
    standings.push_back({placed[index].entrant->member, rank});
  }
  return standings;
}

}  // namespace kovi
