#include "KoviKit/wallet/V6WalletRequest.h"

#include <openssl/rand.h>

#include <array>
#include <cstdio>

#include "KoviKit/foundation/Trap.h"

namespace kovi {

// Texts in requests come from parsed documents (which hold valid UTF-8) or
// from checked arguments; a stray invalid byte would become U+FFFD rather
// than stop the encoder with an exception.
std::string encodeV6WalletRequest(const V6WalletRequest& request) {
  return encodeRecord(request).dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string makeV6WalletRequestId() {
  std::array<unsigned char, 16> bytes{};
  // A request id that repeats could merge two operations on the server;
  // without randomness no id is safe to make.
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) trap("no randomness for a wallet request id");
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40);
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
  std::array<char, 37> text{};
  std::snprintf(text.data(), text.size(), "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x", bytes[0],
                bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], bytes[6], bytes[7], bytes[8], bytes[9], bytes[10],
                bytes[11], bytes[12], bytes[13], bytes[14], bytes[15]);
  return std::string(text.data(), 36);
}

}  // namespace kovi
