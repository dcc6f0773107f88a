// Replay documents are pasted by people and recorded by devices: any bytes
// must decode to a session or a reason naming where, never crash or trap.
// A session that decodes is run to its end, and its timeline must stay
// sorted, contiguous and summed into the snapshot's totals whatever the
// events were.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviKit/working/WorkingSessionCoding.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "KoviKit/working/WorkingSessionStatus.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  auto replay = decodeWorkingSessionReplay(text);
  if (!replay) {
    if (replay.error().reason.empty()) std::abort();
    return 0;
  }
  for (const WorkingSessionEvent& event : replay->events) {
    (void)replay->engine.observe(event);
    (void)workingSessionStatusLine(replay->engine);
    (void)workingProtectionStatusLine(replay->engine);
    (void)workingExclusionReason(replay->engine);
  }
  const WorkingSessionSnapshot snapshot = replay->engine.snapshot();
  std::int64_t covered = 0;
  for (std::size_t index = 0; index < snapshot.segments.size(); ++index) {
    const auto& segment = snapshot.segments[index];
    if (segment.startMS >= segment.endMS) std::abort();
    if (index > 0 && snapshot.segments[index - 1].endMS != segment.startMS) std::abort();
    covered += segment.endMS - segment.startMS;
  }
  if (covered != snapshot.elapsedMS) std::abort();
  if (snapshot.candidateActiveMS + snapshot.idleMS + snapshot.breakMS + snapshot.unverifiedMS +
          snapshot.violationMS != covered) {
    std::abort();
  }
  (void)encodeRecord(snapshot).dump();
  return 0;
}
