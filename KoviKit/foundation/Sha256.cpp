#include "KoviKit/foundation/Sha256.h"

#include <openssl/evp.h>

#include "KoviKit/foundation/Trap.h"

namespace kovi {

Sha256Digest sha256(std::span<const std::uint8_t> bytes) {
  Sha256Digest digest{};
  unsigned int length = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1 ||
      length != digest.size()) {
    trap("OpenSSL could not compute SHA-256");
  }
  return digest;
}

Sha256Digest sha256(std::string_view bytes) {
  return sha256(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
}

std::string lowercaseHex(std::span<const std::uint8_t> bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string hex(bytes.size() * 2, '0');
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    hex[2 * index] = digits[bytes[index] >> 4];
    hex[2 * index + 1] = digits[bytes[index] & 0x0f];
  }
  return hex;
}

std::string sha256Hex(std::string_view bytes) { return lowercaseHex(sha256(bytes)); }

std::string fileNameHash(std::string_view text) {
  const Sha256Digest digest = sha256(text);
  return lowercaseHex(std::span(digest).first(16));
}

}  // namespace kovi
