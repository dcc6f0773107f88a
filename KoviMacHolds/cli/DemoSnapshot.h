#pragma once

#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// A sample schedule laid out around `day` so the demo always has something to
// show: an exam week from two days before to three days after, study blocks
// 09:00–11:30 and 14:00–16:30, exam-week nights 23:30–07:00, and a 45-minute
// Social allowance of which 20 minutes are used and no span is open.
MacHoldsSnapshot demoSnapshot(std::string_view day, const Calendar& calendar);

}  // namespace kovi::holds
