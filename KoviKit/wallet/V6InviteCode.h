#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "KoviKit/wallet/V6WalletErrors.h"

namespace kovi {

// An invite code: "KOVI", an optional hyphen, four symbols, an optional
// hyphen, four symbols. The symbols are the digits 2–9 and the capital
// letters without I and O, so that 0/O and 1/I cannot be confused; the eight
// body symbols identify the invitation.
struct V6InviteCode {
  static constexpr std::string_view kPrefix = "KOVI";
  static constexpr std::string_view kAlphabet = "23456789ABCDEFGHJKLMNPQRSTUVWXYZ";
  static constexpr std::size_t kBodyLength = 8;

  std::string body;

  bool operator==(const V6InviteCode&) const = default;

  // The one written form sent to the service and shown to people:
  // "KOVI-ABCD-EFGH", upper case, both hyphens.
  std::string written() const;

  // Whether `text` is exactly eight symbols of the alphabet.
  static bool isBody(std::string_view text);

  // The first invite code in free text: a code alone, in a sentence or in a
  // link. The code must not be glued to a letter, digit, percent sign,
  // underscore or hyphen on either side, so a code inside a longer token or
  // a percent-encoded sequence is not taken. Pasted text is folded to upper
  // case first (root locale, so the Turkish dotted and dotless i fold like
  // any other letter): people type codes in lower case too, and folding
  // before the neighbour test keeps "xkovi-…" glued.
  static std::optional<V6InviteCode> find(std::string_view text);
};

// Whether `text` is a kovi reference: "KOVI-" then 4 to 120 of A–Z, 0–9 and
// "-". References are copied by machines, not typed, so no case folding.
bool isKoviReference(std::string_view text);

// What a pasted text or link leads to: an invite code, or (failing that) a
// kovi reference — the whole trimmed text, or a link's last path segment.
using V6InviteTarget = std::variant<V6InviteCode, std::string>;

// The target of a pasted text, or "invite_code_unrecognized" ("Bu kovi
// bağlantısı tanınmadı. Kodu ya da bağlantıyı kontrol et.").
std::expected<V6InviteTarget, V6InviteError> recognizeInvite(std::string_view text);

}  // namespace kovi
