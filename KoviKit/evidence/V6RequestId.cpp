#include "KoviKit/evidence/V6RequestId.h"

#include <openssl/rand.h>

#include <array>
#include <cstdint>

#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {

std::string newV6RequestId() {
  std::array<std::uint8_t, 16> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) trap("OpenSSL could not make random bytes");
  return lowercaseHex(bytes);
}

}  // namespace kovi
