// Envelope fields come from files (`kovi evidence envelope`) and, on the
// service side, from devices. Whatever the bytes, decoding answers without
// crashing; an envelope that decodes and validates writes a canonical text
// that parses back to the same envelope, so what is hashed is what was read.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KoviKit/evidence/AttestedEvidenceEnvelope.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto envelope = kovi::decodeJsonText<kovi::AttestedEvidenceEnvelope>(text);
  if (!envelope || !envelope->validate()) return 0;
  const auto again = kovi::decodeJsonText<kovi::AttestedEvidenceEnvelope>(envelope->canonicalText());
  if (!again || *again != *envelope) __builtin_trap();
  return 0;
}
