#include "KoviKit/working/WorkingJudgement.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>
#include <string_view>

#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/working/WorkingPoolApportionment.h"
#include "KoviKit/working/WorkingRuleLimits.h"

namespace kovi {
namespace {

using Rules = WorkingRules;

std::string memberPath(std::size_t index) { return "members[" + std::to_string(index) + "]"; }

std::optional<std::string> segmentProblem(const WorkingMemberWork& member, const std::string& path) {
  std::vector<WorkingWorkSegment> all;
  for (std::size_t session = 0; session < member.sessions.size(); ++session) {
    const auto& segments = member.sessions[session].segments;
    for (std::size_t index = 0; index < segments.size(); ++index) {
      if (segments[index].start >= segments[index].end) {
        return path + ".sessions[" + std::to_string(session) + "].segments[" + std::to_string(index) +
               "]: end is not after start";
      }
      all.push_back(segments[index]);
    }
  }
  std::ranges::sort(all, {}, &WorkingWorkSegment::start);
  for (std::size_t index = 1; index < all.size(); ++index) {
    if (all[index].start < all[index - 1].end) {
      return path + ": two segments overlap at " + std::to_string(all[index].start);
    }
  }
  return std::nullopt;
}

std::optional<std::string> workProblem(const Rules& rules, const std::vector<WorkingMemberWork>& members) {
  if (members.empty()) return "members: no members to judge";
  const bool byAddress = rules.economics.rounding == Rules::Rounding::largestRemainderAddress;
  std::set<std::string_view> seen;
  for (std::size_t index = 0; index < members.size(); ++index) {
    const WorkingMemberWork& member = members[index];
    const std::string path = memberPath(index);
    if (member.accountID.empty()) return path + ".accountID: empty";
    if (!seen.insert(member.accountID).second) {
      return path + ".accountID: \"" + member.accountID + "\" appears more than once";
    }
    if (member.violations < 0) return path + ".violations: negative";
    if (byAddress && (!member.address || member.address->empty())) {
      return path + ".address: rounding by address needs every member's address";
    }
    if (auto problem = segmentProblem(member, path)) return problem;
  }
  return std::nullopt;
}

bool isEligible(const Rules& rules, const WorkingMemberProgress& progress) {
  const auto& race = rules.race;
  if (race.kind == Rules::RaceKind::none) return progress.successful;
  // A member without counted work is not a racer, whatever the minimum.
  if (progress.countedMilliseconds == 0) return false;
  if (progress.countedMilliseconds < checkedMul<std::int64_t>(race.minimumEligibilitySeconds, 1000)) return false;
  // Races with a target rank only those who reached it.
  return !race.targetSeconds || progress.reachedAt.has_value();
}

// Smaller ranks ahead; equal keys tie.
using RankKey = std::array<std::int64_t, 2>;

RankKey rankKey(const Rules& rules, const WorkingMemberProgress& progress, std::int64_t violations) {
  const auto& race = rules.race;
  // Reach times compare by tie bucket counted from the kovi's start.
  const auto reachBucket = [&] {
    return (*progress.reachedAt - rules.calendar.startsAt) / checkedMul<std::int64_t>(race.tieBucketSeconds, 1000);
  };
  switch (race.kind) {
    case Rules::RaceKind::highestTotal: return {-progress.countedMilliseconds, 0};
    case Rules::RaceKind::firstToTarget: return {reachBucket(), 0};
    case Rules::RaceKind::consistency: return {-progress.successfulDays, 0};
    case Rules::RaceKind::streak: return {-progress.bestStreak, 0};
    case Rules::RaceKind::efficiency:
      return {violations,
              race.efficiencyTieBreak == Rules::Race::EfficiencyTieBreak::earliestTarget ? reachBucket() : 0};
    case Rules::RaceKind::none: break;
  }
  return {0, 0};
}

std::int64_t rankSharesBetween(const std::vector<std::int64_t>& shares, std::size_t from, std::size_t to) {
  std::int64_t total = 0;
  for (std::size_t position = from; position < std::min(to, shares.size()); ++position) {
    total = checkedAdd(total, shares[position]);
  }
  return total;
}

std::string lowercased(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

class Judge {
 public:
  Judge(const Rules& rules, const std::vector<WorkingMemberWork>& members)
      : rules_(rules), work_(members), claims_(members.size()) {
    const bool byAddress = rules.economics.rounding == Rules::Rounding::largestRemainderAddress;
    for (std::size_t index = 0; index < members.size(); ++index) {
      WorkingMemberJudgement member;
      member.accountID = members[index].accountID;
      member.progress = measureWorkingProgress(rules, members[index]);
      member.eligible = isEligible(rules, member.progress);
      if (member.eligible) eligible_.push_back(index);
      judgement_.members.push_back(std::move(member));
      claims_[index].order = byAddress ? lowercased(*members[index].address) : members[index].accountID;
    }
  }

  WorkingJudgement judge() && {
    if (eligible_.empty()) {
      applyFallback();
    } else if (rules_.race.kind == Rules::RaceKind::none) {
      shareEqually(eligible_);
    } else {
      rankAndShare();
    }
    const std::vector<std::int64_t> points =
        apportionWorkingPool(claims_, kWorkingWholePoolBps - judgement_.settlement.carriedBps);
    for (std::size_t index = 0; index < points.size(); ++index) judgement_.members[index].payoutBps = points[index];
    return std::move(judgement_);
  }

 private:
  void shareEqually(const std::vector<std::size_t>& recipients) {
    for (const std::size_t index : recipients) {
      claims_[index].numerator = kWorkingWholePoolBps;
      claims_[index].denominator = static_cast<std::int64_t>(recipients.size());
    }
  }

  // Tied members occupy consecutive positions and share equally the rank
  // shares of the positions they occupy; the shares of ranks nobody eligible
  // reached go to the last eligible group.
  void rankAndShare() {
    std::vector<RankKey> keys(work_.size());
    for (const std::size_t index : eligible_) {
      keys[index] = rankKey(rules_, judgement_.members[index].progress, work_[index].violations);
    }
    std::ranges::stable_sort(eligible_, [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
    const auto& shares = rules_.economics.rankPayoutsBps;
    for (std::size_t first = 0; first < eligible_.size();) {
      std::size_t last = first + 1;
      while (last < eligible_.size() && keys[eligible_[last]] == keys[eligible_[first]]) ++last;
      std::int64_t groupShares = rankSharesBetween(shares, first, last);
      if (last == eligible_.size()) groupShares = checkedAdd(groupShares, rankSharesBetween(shares, last, shares.size()));
      for (std::size_t position = first; position < last; ++position) {
        const std::size_t index = eligible_[position];
        judgement_.members[index].rank = static_cast<std::int64_t>(first + 1);
        claims_[index].numerator = groupShares;
        claims_[index].denominator = static_cast<std::int64_t>(last - first);
      }
      first = last;
    }
  }

  void applyFallback() {
    WorkingSettlement& settlement = judgement_.settlement;
    settlement.fallbackUsed = true;
    switch (rules_.economics.fallback) {
      case Rules::Fallback::refund: {
        settlement.kind = WorkingSettlement::Kind::refund;
        std::vector<std::size_t> everyone(work_.size());
        for (std::size_t index = 0; index < everyone.size(); ++index) everyone[index] = index;
        shareEqually(everyone);
        break;
      }
      case Rules::Fallback::closestToTarget: shareEqually(closestToTarget()); break;
      case Rules::Fallback::rollover:
        settlement.kind = WorkingSettlement::Kind::rollover;
        settlement.carriedBps = kWorkingWholePoolBps;
        break;
    }
  }

  // The members whose goal progress falls least short of its target.
  std::vector<std::size_t> closestToTarget() const {
    auto shortfall = [&](std::size_t index) {
      const WorkingMemberProgress& progress = judgement_.members[index].progress;
      return std::max<std::int64_t>(0, progress.targetMilliseconds - progress.progressMilliseconds);
    };
    std::int64_t smallest = shortfall(0);
    for (std::size_t index = 1; index < work_.size(); ++index) smallest = std::min(smallest, shortfall(index));
    std::vector<std::size_t> closest;
    for (std::size_t index = 0; index < work_.size(); ++index) {
      if (shortfall(index) == smallest) closest.push_back(index);
    }
    return closest;
  }

  const Rules& rules_;
  const std::vector<WorkingMemberWork>& work_;
  std::vector<WorkingPoolClaim> claims_;
  std::vector<std::size_t> eligible_;
  WorkingJudgement judgement_;
};

}  // namespace

std::expected<WorkingJudgement, std::string> judgeWorkingRules(const WorkingRules& rules,
                                                               const std::vector<WorkingMemberWork>& members) {
  if (auto problem = workProblem(rules, members)) return std::unexpected(std::move(*problem));
  return Judge(rules, members).judge();
}

}  // namespace kovi
