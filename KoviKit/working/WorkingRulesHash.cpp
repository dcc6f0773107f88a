#include "KoviKit/working/WorkingRulesHash.h"

#include "KoviKit/foundation/Sha256.h"

namespace kovi {

std::string workingRulesHash(const WorkingRules& rules) { return sha256Hex(encodeWorkingRulesText(rules)); }

}  // namespace kovi
