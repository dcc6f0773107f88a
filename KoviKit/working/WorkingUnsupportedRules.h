#pragma once

#include <string_view>
#include <vector>

#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// A rule value the format can express but this version cannot apply.
struct WorkingUnsupportedRule {
  std::string_view path;   // "session.hardWindowSeconds"
  std::string_view label;  // the Turkish label shown to the user
  bool operator==(const WorkingUnsupportedRule&) const = default;
};

// Every rule of `rules` this version cannot apply, in a fixed order. A
// non-empty answer keeps a kovi from being created (see
// `kWorkingUnsupportedRulesMessage`).
std::vector<WorkingUnsupportedRule> unsupportedWorkingRules(const WorkingRules& rules);

}  // namespace kovi
