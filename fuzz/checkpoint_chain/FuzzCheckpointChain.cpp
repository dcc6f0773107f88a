// Checkpoint files come from other devices and from people checking them:
// any bytes must decode to an array of checkpoints or a reason, and any
// array must get a verdict without a crash or a trap. A verdict must hold
// together: only a consistent chain accepts time, never more than it spans,
// and a decoded checkpoint's canonical text decodes to the same checkpoint.
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingCheckpointChain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  using Status = WorkingCheckpointChainReport::Status;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto chain = decodeJsonText<std::vector<WorkingCheckpoint>>(text);
  if (!chain) {
    if (chain.error().reason.empty()) std::abort();
    return 0;
  }
  for (const WorkingCheckpoint& checkpoint : *chain) {
    const auto again = decodeJsonText<WorkingCheckpoint>(workingCheckpointCanonicalJson(checkpoint));
    if (!again || *again != checkpoint) std::abort();
  }
  const auto report = verifyWorkingCheckpointChain(*chain);
  switch (report.status) {
    case Status::inconsistent:
      if (report.acceptedMS != 0 || report.through || !report.brokenAt || report.reason.empty()) std::abort();
      break;
    case Status::none:
      if (!chain->empty()) std::abort();
      break;
    case Status::verified:
    case Status::pending:
      if (report.acceptedMS < 0 || report.brokenAt) std::abort();
      if (report.through && report.acceptedMS > *report.through) std::abort();
      break;
    case Status::unverifiable:
      // Only a check against a device key finds a chain unverifiable.
      std::abort();
  }
  return 0;
}
