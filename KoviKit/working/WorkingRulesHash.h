#pragma once

#include <string>

#include "KoviKit/working/WorkingRules.h"

namespace kovi {

// The identity of a consented rule set in protection records and windows:
// SHA-256, as 64 lowercase hex digits, of the rule set's canonical text (its
// keys in declared order, no whitespace, unset optionals as null).
std::string workingRulesHash(const WorkingRules& rules);

}  // namespace kovi
