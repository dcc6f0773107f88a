#include "KoviKit/native/NativeResponseClassifier.h"

#include <algorithm>
#include <optional>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/native/NativeRetryAfter.h"

namespace kovi {
namespace {

constexpr long kStatusOK = 200;
constexpr long kStatusUnauthorized = 401;
constexpr long kStatusTooManyRequests = 429;
constexpr std::string_view kJsonContentType = "application/json";
constexpr std::string_view kSignInRequiredCode = "sign_in_required";

bool bodyIsUsable(const NativeHttpResponse& response) {
  return !response.bodyOverLimit && response.body.size() <= kNativeResponseBodyLimit;
}

// The failure body's object, when the body is one; any other body carries
// neither a code nor a wait.
std::optional<nlohmann::json> failureObject(std::string_view body) {
  auto document = parseJson(body);
  if (!document || !document->is_object()) return std::nullopt;
  return std::move(*document);
}

// Each field is read on its own: a malformed wait does not hide a valid code.
template <class T>
std::optional<T> field(const nlohmann::json& object, std::string_view key) {
  auto value = JsonView(object).getOptional<T>(key);
  if (!value) return std::nullopt;
  return *value;
}

std::int64_t rateLimitWait(const NativeHttpResponse& response, std::string_view body, UnixMillis now) {
  // The body's wait is the service's own word and needs no clock, so it wins
  // over a header that a proxy may have added or that names a date.
  if (body.size() <= kNativeRateLimitBodyLimit) {
    if (const auto object = failureObject(body)) {
      if (const auto seconds = field<std::int64_t>(*object, "retryAfterSeconds")) return *seconds;
    }
  }
  if (const auto header = response.header("Retry-After")) {
    if (const auto seconds = parseRetryAfter(*header, now)) return *seconds;
  }
  return kNativeAssumedRateLimitWait;
}

std::optional<std::string> errorCode(std::string_view body) {
  const auto object = failureObject(body);
  if (!object) return std::nullopt;
  auto code = field<std::string>(*object, "error");
  if (!code || !isNativeErrorCode(*code)) return std::nullopt;
  return code;
}

}  // namespace

bool isNativeErrorCode(std::string_view code) {
  return !code.empty() && code.size() <= 64 &&
         std::ranges::all_of(code, [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

std::expected<std::string_view, NativeAccountError> acceptNativeResponse(const NativeHttpResponse& response,
                                                                         UnixMillis now) {
  const auto contentType = response.header("Content-Type");
  if (response.status != kStatusOK || !contentType || !contentType->starts_with(kJsonContentType)) {
    return std::unexpected(classifyNativeFailure(response, now));
  }
  if (!bodyIsUsable(response)) return std::unexpected(NativeAccountError::invalidResponse());
  return std::string_view(response.body);
}

NativeAccountError classifyNativeFailure(const NativeHttpResponse& response, UnixMillis now) {
  const std::string_view body = bodyIsUsable(response) ? std::string_view(response.body) : std::string_view();
  if (response.status == kStatusTooManyRequests) {
    return NativeAccountError::rateLimited(rateLimitWait(response, body, now));
  }
  if (auto code = errorCode(body)) {
    if (*code == kSignInRequiredCode) return NativeAccountError::signInRequired();
    return NativeAccountError::service(std::move(*code));
  }
  return response.status == kStatusUnauthorized ? NativeAccountError::signInRequired()
                                                : NativeAccountError::unavailable();
}

}  // namespace kovi
