#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kovi {

struct NativeErrorMessage {
  std::string_view code;     // the service's snake_case code
  std::string_view message;  // the Turkish text shown to the user
};

// One service area's error vocabulary: the message for each code the area's
// service can answer with. Each area defines its table next to its client
// (account in native/, working in working/, …) and hands it to the transport.
struct NativeErrorTable {
  std::string_view area;  // "account", "working", "v6/evidence", "v6/wallet", "purrl"
  std::span<const NativeErrorMessage> messages;

  // The message for `code` through the localization lookup; a code the table
  // does not know gets the generic text, so raw codes never reach the user.
  std::string messageFor(std::string_view code) const;
  bool knows(std::string_view code) const;
};

// What the user reads for a service code no table knows.
inline constexpr std::string_view kNativeGenericFailureMessage = "Şu anda tamamlanamadı. Yenileyip tekrar dene.";

}  // namespace kovi
