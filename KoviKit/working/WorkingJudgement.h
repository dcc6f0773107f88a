#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingMemberProgress.h"
#include "KoviKit/working/WorkingMemberWork.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// One member's result: progress and success against the goal, place in the
// race and share of the pool in basis points.
struct WorkingMemberJudgement {
  std::string accountID;
  WorkingMemberProgress progress;
  bool eligible = false;              // ranked in the race (or, without a race, successful)
  std::optional<std::int64_t> rank;   // 1 = first; tied members share a rank
  std::int64_t payoutBps = 0;
  bool operator==(const WorkingMemberJudgement&) const = default;
};

// How the pool is settled.
struct WorkingSettlement {
  enum class Kind { payout, refund, rollover };
  Kind kind = Kind::payout;
  // Nobody was eligible, so the rule set's fallback decided.
  bool fallbackUsed = false;
  // Points carried to the next agreed kovi (the whole pool on rollover).
  std::int64_t carriedBps = 0;
  bool operator==(const WorkingSettlement&) const = default;
};

// The judgement of a whole kovi. The members' payouts and the carried points
// always add up to exactly 10000.
struct WorkingJudgement {
  std::vector<WorkingMemberJudgement> members;  // in the order given
  WorkingSettlement settlement;
  bool operator==(const WorkingJudgement&) const = default;
};

// Judges every member's counted work under a valid rule set, as its consent
// summary promises. A pure function of its inputs. Fails, naming the member
// ("members[1].sessions[0].segments[2]: …"), when there are no members, an
// account ID is empty or repeated, a segment does not end after it starts,
// two segments of one member overlap, violations are negative, or rounding by
// address meets a member without an address.
std::expected<WorkingJudgement, std::string> judgeWorkingRules(const WorkingRules& rules,
                                                               const std::vector<WorkingMemberWork>& members);

template <>
struct EnumNames<WorkingSettlement::Kind> {
  static constexpr std::array table{std::pair{WorkingSettlement::Kind::payout, std::string_view("payout")},
                                    std::pair{WorkingSettlement::Kind::refund, std::string_view("refund")},
                                    std::pair{WorkingSettlement::Kind::rollover, std::string_view("rollover")}};
};

}  // namespace kovi
