// Cursor files and scope files are read back from disk and from the command
// line. Whatever the bytes: loading answers with a record or a typed error,
// a record that loads stores and loads back unchanged, and a scope that
// decodes has a stable 64-digit name.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <unistd.h>

#include "KoviKit/evidence/EvidenceReadCursorFileStorage.h"
#include "fuzz/FuzzScratchFile.h"
#include "KoviKit/foundation/Json.h"

namespace {

const kovi::EvidenceReadScope kScope{kovi::EvidenceReadScopeKind::walking, "acct-ayse", "kovi-42", "binding-7", 3,
                                     "device-1"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("fuzz_evidence_read_cursor." + std::to_string(getpid()));
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kovi::EvidenceReadCursorFileStorage storage(directory);
  if (!kovi::fuzz::writeScratchFile(storage.recordFile(kScope), bytes)) return 0;
  if (!kovi::fuzz::writeScratchFile(storage.acceptedFile(kScope), bytes)) return 0;

  if (const auto record = storage.loadRecord(kScope); record && *record) {
    if (!storage.saveRecord(**record)) __builtin_trap();
    const auto again = storage.loadRecord(kScope);
    if (!again || *again != *record) __builtin_trap();
  }
  if (const auto accepted = storage.loadAccepted(kScope); accepted && *accepted) {
    if (!storage.saveAccepted(kScope, **accepted)) __builtin_trap();
    const auto again = storage.loadAccepted(kScope);
    if (!again || *again != *accepted) __builtin_trap();
  }
  if (const auto scope = kovi::decodeJsonText<kovi::EvidenceReadScope>(bytes)) {
    const auto digest = scope->digest();
    if (digest.size() != 64 || digest != scope->digest()) __builtin_trap();
  }
  return 0;
}
