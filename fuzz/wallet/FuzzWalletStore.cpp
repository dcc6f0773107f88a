// The stored operation file can be anything a crash, a disk or a person left
// there. Loading must answer without crashing; a file that does not load
// must never be replaced; one that loads must save and load back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/wallet/V6WalletOperationStore.h"

namespace {

const std::filesystem::path& folder() {
  static const std::filesystem::path path = [] {
    std::string pattern = (std::filesystem::temp_directory_path() / "kovi-fuzz-wallet-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) std::abort();
    return std::filesystem::path(pattern);
  }();
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  kovi::V6WalletOperationStore store(folder());
  const auto file = folder() / "Kovi/WalletOperations/v1/fuzz.json";
  if (!kovi::writeFileAtomically(file, bytes)) std::abort();

  const auto loaded = store.load("fuzz");
  if (!loaded) {
    if (store.save("fuzz", kovi::V6WalletOperation{})) __builtin_trap();
    if (kovi::readFileLimited(file, size + 1).value_or("") != bytes) __builtin_trap();
    return 0;
  }
  if (!*loaded) return 0;
  if (!store.save("fuzz", **loaded)) __builtin_trap();
  const auto again = store.load("fuzz");
  if (!again || !*again || !(**again == **loaded)) __builtin_trap();
  return 0;
}
