#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/evidence/WalkingKoviRules.h"

namespace kovi {

// The Turkish texts that describe a walking kovi's rules to a user before
// joining: a title (the goal in a few words; empty when the rules name no
// goal) and the lines of the rules below it —
// the goal, the source of the steps, when days begin, how results are
// computed, the verification window, the payout, what happens when nobody
// succeeds and the exit penalty. Step counts and days are written the
// Turkish way (10.000); the exit penalty's odd percentages follow the
// current locale, the rank shares are Turkish like the sentence they are in.
struct WalkingRuleDescription {
  std::string title;
  std::vector<std::string> lines;

  bool operator==(const WalkingRuleDescription&) const = default;

  // `percentLocale` is the ICU locale of the exit penalty's percentage;
  // empty means the process's current locale.
  static WalkingRuleDescription describe(const WalkingKoviRules& rules, std::string_view percentLocale = {});
};

}  // namespace kovi
