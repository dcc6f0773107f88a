#include "KoviKit/working/WorkingRulesNotices.h"

#include "KoviKit/foundation/Localization.h"
#include "KoviKit/working/WorkingUnsupportedRules.h"

namespace kovi {

std::expected<WorkingRules, std::string> receivedWorkingRules(std::string_view text) {
  auto rules = decodeWorkingRules(text);
  if (!rules) return std::unexpected(localized(kWorkingRulesUnverifiableMessage));
  return std::move(*rules);
}

std::optional<std::string> workingCreationProblem(const WorkingRules& rules) {
  if (unsupportedWorkingRules(rules).empty()) return std::nullopt;
  return localized(kWorkingUnsupportedRulesMessage);
}

std::optional<std::string> workingConsentProblem(const std::optional<WorkingRules>& consented,
                                                 const WorkingRules& current, WorkingConsentContext context) {
  if (consented && *consented == current) return std::nullopt;
  return localized(context == WorkingConsentContext::creating ? kWorkingRulesReviewAtCreationMessage
                                                              : kWorkingRulesChangedMessage);
}

}  // namespace kovi
