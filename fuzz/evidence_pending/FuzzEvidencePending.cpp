// Pending evidence records are read back from disk, where anything may have
// happened to them. Whatever the bytes, decoding answers without crashing, and
// a record that decodes encodes to text that decodes to the same record: a
// resend must carry exactly what was signed.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KoviKit/evidence/V6EvidencePendingStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto record = kovi::V6EvidencePendingStore::decode(text);
  if (!record) return 0;
  const auto again = kovi::V6EvidencePendingStore::decode(kovi::V6EvidencePendingStore::encode(*record));
  if (!again || *again != *record) __builtin_trap();
  return 0;
}
