#pragma once

#include <string>

namespace kovi::holds::testing {

// What the agent should hold for the length of a desktop test, laid out
// around the current time of day (the agent runs in UTC): an everyday night
// (block list) or the study blocks of an exam week (allow-list).
enum class HoldNow { sleep, study };
std::string snapshotHoldingNow(HoldNow hold);

}  // namespace kovi::holds::testing
