#pragma once

#include <optional>
#include <string>

#include "KoviKit/attest/AppAttestPurpose.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// A one-time challenge from the service, bound to one purpose and valid until
// `expiresAt` (Unix milliseconds).
struct AppAttestChallenge {
  std::optional<std::string> financialActorId;
  std::string challengeId;
  std::string challenge;
  AppAttestPurpose purpose = AppAttestPurpose::submitWalkingEvidence;
  std::optional<std::string> registrationKeyId;
  std::optional<std::string> requestId;
  std::optional<std::string> policyId;
  UnixMillis expiresAt = 0;
  bool operator==(const AppAttestChallenge&) const = default;
};

// A service answer: a newer service may add keys.
template <>
struct JsonRecordFields<AppAttestChallenge> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("financialActorId", &AppAttestChallenge::financialActorId),
      field("challengeId", &AppAttestChallenge::challengeId),
      field("challenge", &AppAttestChallenge::challenge),
      field("purpose", &AppAttestChallenge::purpose),
      field("registrationKeyId", &AppAttestChallenge::registrationKeyId),
      field("requestId", &AppAttestChallenge::requestId),
      field("policyId", &AppAttestChallenge::policyId),
      field("expiresAt", &AppAttestChallenge::expiresAt)};
};

}  // namespace kovi
