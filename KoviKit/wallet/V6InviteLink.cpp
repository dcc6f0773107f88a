#include "KoviKit/wallet/V6InviteLink.h"

namespace kovi {

std::optional<V6InviteCode> V6InviteLink::inviteCode() const {
  if (auto found = V6InviteCode::find(code)) return found;
  return V6InviteCode::find(url);
}

}  // namespace kovi
