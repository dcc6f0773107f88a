// Scheduled-arm files are read back from disk, where anything may have been
// written: any bytes must decode to a record or a reason, never crash. A file
// that decodes must decode the same once written again, and a chain binding
// taken from the input must be judged without trouble.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "KoviKit/working/WorkingChainBinding.h"
#include "KoviKit/working/WorkingScheduledArmStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string binding = "0x00000000000000000000000000000000000000aa:7";

  const auto record = decodeWorkingScheduledArmFile(text, binding);
  if (record) {
    const WorkingScheduledArmFile file{WorkingScheduledArmFile::kVersion, binding, *record};
    const auto again = decodeWorkingScheduledArmFile(encodeRecord(file).dump(), binding);
    if (!again || *again != *record) std::abort();
  } else if (record.error().reason.empty()) {
    std::abort();
  }

  const std::string_view firstLine = text.substr(0, text.find('\n'));
  if (isWorkingChainBinding(firstLine) && (firstLine.size() < 44 || !firstLine.starts_with("0x"))) std::abort();
  return 0;
}
