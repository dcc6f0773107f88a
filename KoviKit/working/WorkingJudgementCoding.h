#pragma once

#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingJudgement.h"
#include "KoviKit/working/WorkingMemberWork.h"

namespace kovi {

// The members' counted work as JSON:
//
//   {"members": [{"accountID": "ayse", "address": null, "violations": 0,
//                 "sessions": [{"id": "s1", "segments": [{"start": 1772431200000,
//                                                         "end": 1772440200000}]}]}]}
//
// `address` and `violations` may be left out (no address, no violations);
// any other key outside this shape is an error naming its path.
Decoded<std::vector<WorkingMemberWork>> decodeWorkingWork(std::string_view text);

// The judgement as JSON: the settlement, then each member's progress, success,
// eligibility, rank and payout share, in the members' order.
nlohmann::ordered_json encodeWorkingJudgement(const WorkingJudgement& judgement);

}  // namespace kovi
