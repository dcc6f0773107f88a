#pragma once

#include <optional>
#include <string>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6InviteCode.h"

namespace kovi {

// A shareable invite link as the wallet service issues it.
struct V6InviteLink {
  std::string code;
  std::string url;
  // Floating seconds since 1970.
  double expiresAt = 0;

  bool operator==(const V6InviteLink&) const = default;

  bool isExpired(double nowSeconds) const { return nowSeconds >= expiresAt; }

  // The link's code in its one written form: taken from `code`, or, when
  // that is not a code, from the link itself.
  std::optional<V6InviteCode> inviteCode() const;
};

// A service answer: unknown keys are ignored.
template <>
struct JsonRecordFields<V6InviteLink> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("code", &V6InviteLink::code), field("url", &V6InviteLink::url),
                                            field("expiresAt", &V6InviteLink::expiresAt)};
};

}  // namespace kovi
