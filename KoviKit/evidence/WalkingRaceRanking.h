#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"

namespace kovi {

struct WalkingRaceEntrant {
  std::string member;
  WalkingEvidenceEvaluation evaluation;
};

struct WalkingRaceStanding {
  std::string member;
  // 1 for the leader; nullopt for a member who is not ranked.
  std::optional<int> rank;
  bool operator==(const WalkingRaceStanding&) const = default;
};

// The order of a race's members on this device's evidence.
//
// first-to-target: members who reached the target, earlier `reachedAt`
// first; highest total: members at or above `minimumEligibility`, larger
// closed total first. Equal instants or totals share a rank and the next rank
// is skipped (1, 1, 3), because ties share the prize. Members who have not
// reached the target, or are below the minimum, are not ranked. The list is
// ranked members by rank, then the unranked; within one rank, by member name,
// so the order is the same on every device. A goal kovi ranks nobody.
std::vector<WalkingRaceStanding> rankWalkingRace(const WalkingKoviRules& rules,
                                                 std::span<const WalkingRaceEntrant> entrants);

}  // namespace kovi
