// The consent document lives on disk where anything may change it. Whatever
// the bytes: a document that loads keeps every account's consent through a
// change and a reload; one that does not load is never overwritten by a change.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "KoviKit/evidence/HealthShareConsentStore.h"
#include "KoviKit/foundation/FileIO.h"
#include "fuzz/FuzzScratchFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("fuzz_health_share_consent." + std::to_string(getpid()));
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (!kovi::fuzz::writeScratchFile(file, bytes)) return 0;

  kovi::HealthShareConsentStore store(file);
  const auto before = store.consent("acct-fuzz");
  const bool changed = store.setAutoShare("acct-fuzz", !before.autoShare).has_value();
  if (store.unreadable() || store.loadFailed()) {
    if (changed) __builtin_trap();
    if (kovi::readFileLimited(file, size + 1).value_or("") != bytes) __builtin_trap();
    return 0;
  }
  if (!changed) return 0;
  const kovi::HealthShareConsentStore reopened(file);
  if (reopened.unreadable() || reopened.consent("acct-fuzz") != store.consent("acct-fuzz")) __builtin_trap();
  if (reopened.consent("acct-fuzz").autoShare == before.autoShare) __builtin_trap();
  return 0;
}
