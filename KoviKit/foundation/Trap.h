#pragma once

#include <string_view>

namespace kovi {

// Stops the process with a message on stderr. Used for programming errors that
// must never be papered over: arithmetic overflow on durations or money, a
// non-finite clock value.
[[noreturn]] void trap(std::string_view message);

}  // namespace kovi
