#include "KoviKit/wallet/V6InviteLink.h"

#include "KoviKit/foundation/JsonFields.h"

namespace kovi {

std::optional<V6InviteCode> V6InviteLink::inviteCode() const {
  if (auto found = V6InviteCode::find(code)) return found;
  return V6InviteCode::find(url);
}

Decoded<V6InviteLink> JsonDecoder<V6InviteLink>::decode(const JsonView& json) {
  V6InviteLink link;
  auto read = readFields(json, field("code", link.code), field("url", link.url), field("expiresAt", link.expiresAt));
  if (!read) return std::unexpected(read.error());
  return link;
}

}  // namespace kovi
