// Feeds arbitrary bytes to the snapshot decoder — checking that its fast path
// agrees with the strict decoder whenever it takes a document — and every
// decoded snapshot to the schedule: windows, the due hold, the plan, whether the agent stays
// active, and the day timeline, whose shape is checked (it must cover the day
// from midnight to midnight without gaps or overlaps).
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsDecision.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"
#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"
#include "KoviMacHolds/MacHoldsTimeline.h"

namespace {

using namespace kovi;
using namespace kovi::holds;

// Millisecond values beyond ±2^53 are not instants or durations the main app
// can write; arithmetic on them traps by design, so they are left out here.
constexpr std::int64_t kLargestRealMillis = std::int64_t{1} << 53;

bool realMillis(std::int64_t value) { return value > -kLargestRealMillis && value < kLargestRealMillis; }

void keepToRealAllowance(MacHoldsSnapshot& snapshot) {
  if (!snapshot.allowance) return;
  if (!realMillis(snapshot.allowance->usedMS) || (snapshot.allowance->since && !realMillis(*snapshot.allowance->since))) {
    snapshot.allowance.reset();
  }
}

void checkTimeline(const MacHoldsSnapshot& snapshot, std::string_view day, const Calendar& calendar) {
  const auto segments = macHoldsTimeline(snapshot, day, calendar);
  if (!segments) return;
  if (segments->empty()) std::abort();
  if (segments->front().from != calendar.dateAt(day, 0)->unixMillis()) std::abort();
  if (segments->back().to != calendar.dateAt(day, 1440)->unixMillis()) std::abort();
  for (std::size_t index = 0; index < segments->size(); ++index) {
    const MacHoldsSegment& segment = (*segments)[index];
    if (segment.from >= segment.to) std::abort();
    if (index > 0 && (segment.from != (*segments)[index - 1].to || segment.kind == (*segments)[index - 1].kind)) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // New York has both a daylight-saving gap and a repeated hour.
  static const Calendar calendar = *Calendar::inZone("America/New_York");
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (const auto fast = decodeMacHoldsSnapshotFast(bytes)) {
    const auto strict = decodeJsonText<MacHoldsSnapshot>(bytes);
    if (!strict || *strict != *fast) std::abort();
  }
  auto load = decodeMacHoldsSnapshot(bytes);
  if (load) keepToRealAllowance(*load);

  for (const double now : {1'795'336'200'000.0, 1'793'514'600'000.0, 1'772'953'800'000.0}) {
    const MacHoldsEvaluation evaluation = evaluateMacHolds(load, Date::fromUnixMillis(now), calendar, false);
    if (evaluation.action.held().has_value() != (evaluation.action.kind() == MacHoldsAction::Kind::hold)) std::abort();
  }
  if (!load) return 0;
  checkTimeline(*load, "2026-11-01", calendar);
  if (load->examWeek) {
    checkTimeline(*load, load->examWeek->startDay, calendar);
    checkTimeline(*load, load->examWeek->endDay, calendar);
  }
  if (load->allowance) checkTimeline(*load, load->allowance->day, calendar);
  return 0;
}
