#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// Why a call to the service failed, as every service client reports it. The
// account client is the reference, but the working, evidence, wallet and
// purrl clients report the same cases and differ only in their code tables.
class NativeAccountError {
 public:
  enum class Case { rateLimited, service, unavailable, signInRequired, invalidResponse };

  // Too many requests; wait this many seconds (may be zero or negative when
  // the service's wait has already passed).
  static NativeAccountError rateLimited(std::int64_t retryAfterSeconds);
  // The service refused the request with its snake_case code.
  static NativeAccountError service(std::string code);
  // The service could not be reached or did not answer usefully.
  static NativeAccountError unavailable();
  // The session is missing or expired; the user signs in again with a passkey.
  static NativeAccountError signInRequired();
  // The service answered 200 with a body that is not the expected record.
  static NativeAccountError invalidResponse();

  Case kind() const { return kind_; }
  std::optional<std::int64_t> retryAfterSeconds() const;
  std::optional<std::string_view> code() const;

  // The Turkish text the user reads; service codes are looked up in `table`.
  std::string message(const NativeErrorTable& table) const;

  // "rateLimited(120)", "service(accounts_at_capacity)", "unavailable": for
  // logs and test output, never for users.
  std::string description() const;

  bool operator==(const NativeAccountError&) const = default;

 private:
  NativeAccountError(Case kind, std::int64_t retryAfterSeconds, std::string code)
      : kind_(kind), retryAfterSeconds_(retryAfterSeconds), code_(std::move(code)) {}

  Case kind_;
  std::int64_t retryAfterSeconds_ = 0;
  std::string code_;
};

template <>
struct EnumNames<NativeAccountError::Case> {
  static constexpr std::array table{
      std::pair{NativeAccountError::Case::rateLimited, std::string_view("rateLimited")},
      std::pair{NativeAccountError::Case::service, std::string_view("service")},
      std::pair{NativeAccountError::Case::unavailable, std::string_view("unavailable")},
      std::pair{NativeAccountError::Case::signInRequired, std::string_view("signInRequired")},
      std::pair{NativeAccountError::Case::invalidResponse, std::string_view("invalidResponse")},
  };
};

// The fixed texts of the cases that carry no service code.
inline constexpr std::string_view kNativeUnavailableMessage = "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene.";
inline constexpr std::string_view kNativeSignInRequiredMessage = "Geçiş anahtarınla yeniden giriş yap.";
inline constexpr std::string_view kNativeInvalidResponseMessage = "Bilgiler doğrulanamadı. Yenileyip tekrar dene.";

// "Şu an çok fazla istek var. 2 dakika sonra yeniden dene.": waits above 59
// seconds are worded in minutes rounded up, shorter ones in seconds, and
// anything below one second as one second.
std::string nativeRateLimitMessage(std::int64_t retryAfterSeconds);

}  // namespace kovi
