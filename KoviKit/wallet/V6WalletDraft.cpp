#include "KoviKit/wallet/V6WalletDraft.h"

#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {
namespace {

template <class Rules>
std::expected<void, DecodeError> checkRules(const nlohmann::ordered_json& rules) {
  const nlohmann::json document(rules);
  auto decoded = JsonView(document, "rules").as<Rules>();
  if (!decoded) return std::unexpected(decoded.error());
  return {};
}

}  // namespace

std::expected<void, DecodeError> checkV6WalletDraft(const V6WalletDraft& draft) {
  if (draft.capacity < 1) return std::unexpected(DecodeError{"capacity", "must be at least 1"});
  if (draft.evidenceGraceSeconds && *draft.evidenceGraceSeconds < 0) {
    return std::unexpected(DecodeError{"evidenceGraceSeconds", "must not be negative"});
  }
  switch (draft.domain) {
    case V6WalletDomain::walking: return checkRules<WalkingKoviRules>(draft.rules);
    case V6WalletDomain::working: return checkRules<WorkingRules>(draft.rules);
  }
  return {};
}

}  // namespace kovi
