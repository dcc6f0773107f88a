#pragma once

#include <cstdint>

namespace kovi {

// A session may run offline for at most this long beyond its last verified
// protection state; time spent uploading records afterwards does not extend
// it. The session engine and the offline lease both stop counting here.
inline constexpr std::int64_t workingMaximumOfflineMS = 90'000;

}  // namespace kovi
