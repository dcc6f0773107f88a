// Rule documents come from the service and from other members' devices: any
// bytes must decode to a valid rule set or a reason, never crash or trap. A
// rule set that decodes must survive encoding unchanged, and everything built
// on a valid rule set (unsupported rules, summary, judgement) must run on it.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviKit/working/WorkingJudgement.h"
#include "KoviKit/working/WorkingRuleSummary.h"
#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingUnsupportedRules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto rules = decodeWorkingRules(text);
  if (!rules) {
    if (rules.error().reason.empty()) std::abort();
    return 0;
  }
  const auto again = decodeWorkingRules(encodeWorkingRulesText(*rules));
  if (!again || *again != *rules) std::abort();

  unsupportedWorkingRules(*rules);
  renderWorkingSummary(summarizeWorkingRules(*rules), WorkingSummaryLanguage::turkish);

  // Two members: one who worked through the whole kovi, one who did nothing.
  WorkingMemberWork busy{"busy", "0xbb", 1, {{"s1", {{rules->calendar.startsAt, rules->calendar.endsAt}}}}};
  WorkingMemberWork idle{"idle", "0xaa", 0, {}};
  const auto judgement = judgeWorkingRules(*rules, {busy, idle});
  if (!judgement) std::abort();
  std::int64_t total = judgement->settlement.carriedBps;
  for (const auto& member : judgement->members) total += member.payoutBps;
  if (total != 10000) std::abort();
  return 0;
}
