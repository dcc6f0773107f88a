#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "KoviKit/foundation/Time.h"

namespace kovi {

// The wait a "Retry-After" header asks for, in seconds from `now`. The value
// is trimmed of white space and read either as a base-10 count of seconds
// with an optional leading "+" ("120", "+120"), or as an HTTP date in GMT
// ("Sun, 22 Nov 2026 03:00:00 GMT"), whose wait is rounded up to whole seconds
// and is negative for a date already past. Anything else — a sign other than
// "+", a fraction, a count beyond 64 bits, another date format, trailing
// text — is no usable wait.
std::optional<std::int64_t> parseRetryAfter(std::string_view value, UnixMillis now);

}  // namespace kovi
