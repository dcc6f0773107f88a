#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string_view>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/native/NativeAccountError.h"
#include "KoviKit/native/NativeHttpResponse.h"

namespace kovi {

// A rate-limit body is read for its wait only up to this size.
inline constexpr std::size_t kNativeRateLimitBodyLimit = 8'192;
// The wait of a rate limit whose body and header give none we can use.
inline constexpr std::int64_t kNativeAssumedRateLimitWait = 60;

// A service error code: 1 to 64 characters of "abcdefghijklmnopqrstuvwxyz_".
bool isNativeErrorCode(std::string_view code);

// Judges a response. A 200 whose Content-Type begins with "application/json"
// succeeds with its body (still to be decoded by the caller); a success whose
// body ran past the limit is `invalidResponse`; anything else is classified
// by `classifyNativeFailure`. Pure: `now` is only used to turn a Retry-After
// date into a wait.
std::expected<std::string_view, NativeAccountError> acceptNativeResponse(const NativeHttpResponse& response,
                                                                         UnixMillis now);

// The error a response that is not a success stands for:
//  1. status 429 is `rateLimited`, waiting the body's `retryAfterSeconds`
//     (read only from bodies of at most 8,192 bytes), else the Retry-After
//     header's wait, else 60 seconds;
//  2. a body whose `error` is a valid code is `signInRequired` for
//     "sign_in_required" and `service(code)` for any other;
//  3. otherwise status 401 is `signInRequired` and every other `unavailable`.
// A body over the limit is treated as no body at all.
NativeAccountError classifyNativeFailure(const NativeHttpResponse& response, UnixMillis now);

}  // namespace kovi
