#include "KoviKit/native/NativeAccountError.h"

#include <algorithm>

#include "KoviKit/foundation/Localization.h"

namespace kovi {
namespace {

// The sentences are looked up with their "%lld" placeholder, so a translation
// places the number where its language wants it.
constexpr std::string_view kRateLimitMinutes = "Şu an çok fazla istek var. %lld dakika sonra yeniden dene.";
constexpr std::string_view kRateLimitSeconds = "Şu an çok fazla istek var. %lld saniye sonra yeniden dene.";
constexpr std::string_view kNumberPlaceholder = "%lld";

std::string fillNumber(std::string_view format, std::int64_t number) {
  std::string text = localized(format);
  if (const auto at = text.find(kNumberPlaceholder); at != std::string::npos) {
    text.replace(at, kNumberPlaceholder.size(), std::to_string(number));
  }
  return text;
}

}  // namespace

NativeAccountError NativeAccountError::rateLimited(std::int64_t retryAfterSeconds) {
  return {Case::rateLimited, retryAfterSeconds, {}};
}
NativeAccountError NativeAccountError::service(std::string code) { return {Case::service, 0, std::move(code)}; }
NativeAccountError NativeAccountError::unavailable() { return {Case::unavailable, 0, {}}; }
NativeAccountError NativeAccountError::signInRequired() { return {Case::signInRequired, 0, {}}; }
NativeAccountError NativeAccountError::invalidResponse() { return {Case::invalidResponse, 0, {}}; }

std::optional<std::int64_t> NativeAccountError::retryAfterSeconds() const {
  if (kind_ != Case::rateLimited) return std::nullopt;
  return retryAfterSeconds_;
}

std::optional<std::string_view> NativeAccountError::code() const {
  if (kind_ != Case::service) return std::nullopt;
  return code_;
}

std::string NativeAccountError::message(const NativeErrorTable& table) const {
  switch (kind_) {
    case Case::rateLimited: return nativeRateLimitMessage(retryAfterSeconds_);
    case Case::service: return table.messageFor(code_);
    case Case::unavailable: return localized(kNativeUnavailableMessage);
    case Case::signInRequired: return localized(kNativeSignInRequiredMessage);
    case Case::invalidResponse: return localized(kNativeInvalidResponseMessage);
  }
  return localized(kNativeUnavailableMessage);
}

std::string NativeAccountError::description() const {
  std::string text(enumName(kind_));
  if (kind_ == Case::rateLimited || kind_ == Case::service) {
    text += '(';
    text += kind_ == Case::rateLimited ? std::to_string(retryAfterSeconds_) : code_;
    text += ')';
  }
  return text;
}

std::string nativeRateLimitMessage(std::int64_t retryAfterSeconds) {
  if (retryAfterSeconds > 59) {
    // (s + 59) / 60 without the addition, which would overflow near the top
    // of the range for a wait the service controls.
    const std::int64_t minutes = retryAfterSeconds / 60 + (retryAfterSeconds % 60 != 0 ? 1 : 0);
    return fillNumber(kRateLimitMinutes, minutes);
  }
  return fillNumber(kRateLimitSeconds, std::max<std::int64_t>(retryAfterSeconds, 1));
}

}  // namespace kovi
