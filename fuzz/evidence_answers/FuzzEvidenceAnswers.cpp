// The evidence service's answers: the context with its chain, the walking
// receipt, the writer-transfer receipt, a challenge and the kovi listing.
// Whatever the bytes, every decoder answers without crashing; a challenge
// that decodes keeps its purpose among the known ones.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KoviKit/evidence/V6WalkingEvidenceAPI.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto answer = kovi::decodeJsonText<kovi::V6WalkingContextAnswer>(text)) {
    (void)answer->context.verifyRulesHash();
  }
  (void)kovi::decodeJsonText<kovi::V6WalkingReceipt>(text);
  (void)kovi::decodeJsonText<kovi::V6WriterTransferReceipt>(text);
  (void)kovi::decodeJsonText<kovi::V6WalkingKoviListing>(text);
  if (const auto challenge = kovi::decodeJsonText<kovi::AppAttestChallenge>(text)) {
    if (kovi::enumName(challenge->purpose).empty()) __builtin_trap();
  }
  return 0;
}
