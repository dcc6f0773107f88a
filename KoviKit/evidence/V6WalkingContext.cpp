#include "KoviKit/evidence/V6WalkingContext.h"

#include <algorithm>
#include <cctype>

namespace kovi {

bool sameHexDigest(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

const V6WalkingContext::Revision* V6WalkingContext::revisionOf(int day) const {
  const auto found = std::ranges::find(revisions, day, &Revision::day);
  return found == revisions.end() ? nullptr : &*found;
}

std::expected<void, WalkingEvidenceError> V6WalkingContext::verifyRulesHash() const {
  const std::string expected = rules.rulesHash();
  if (sameHexDigest(rulesHash, expected)) return {};
  return std::unexpected(WalkingEvidenceError{std::string(walkingErrorCode::rulesHashMismatch),
                                              "the context names rules hash " + rulesHash +
                                                  " but its rules hash to " + expected});
}

}  // namespace kovi
