#pragma once

#include <string>
#include <string_view>

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The codes of the invite flow. Except for `codeUnrecognized`, which this
// device decides on its own, they are the service's.
namespace inviteErrorCode {
inline constexpr std::string_view notFound = "invite_not_found";
inline constexpr std::string_view invitationNotFound = "invitation_not_found";
inline constexpr std::string_view joinPending = "invitation_join_pending";
inline constexpr std::string_view updatePending = "invitation_update_pending";
inline constexpr std::string_view noLongerValid = "invitation_no_longer_valid";
inline constexpr std::string_view linksUnavailable = "invite_links_unavailable";
inline constexpr std::string_view signerUnavailable = "invite_signer_unavailable";
inline constexpr std::string_view creationUnavailable = "invite_creation_unavailable";
inline constexpr std::string_view codeUnrecognized = "invite_code_unrecognized";
}  // namespace inviteErrorCode

// The error vocabulary of "/api/native/v6/wallet". It holds the invite
// codes; the wallet operations' codes belong to the same service area and
// join this table.
const NativeErrorTable& v6WalletErrorTable();

// An invite flow failure: the code and the Turkish text the user reads.
struct V6InviteError {
  std::string code;

  std::string message() const { return v6WalletErrorTable().messageFor(code); }
  bool operator==(const V6InviteError&) const = default;
};

}  // namespace kovi
