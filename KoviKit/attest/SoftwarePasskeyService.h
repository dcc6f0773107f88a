#pragma once

#include <filesystem>
#include <mutex>
#include <string>

#include "KoviKit/attest/PasskeyService.h"

namespace kovi {

// Where passkeys assert: the relying party's id (a domain, hashed into the
// authenticator data) and the web origin written into the client data.
struct PasskeyRelyingParty {
  std::string id;
  std::string origin;
};

// Passkeys made and used in software: OpenSSL P-256 keys, one file per
// credential under <data dir>/Kovi/Passkeys/v1/<credentialId>.json, mode
// 0600, replaced atomically. Assertions are standard WebAuthn assertions
// (user present and verified), so any WebAuthn server library verifies them.
// The private key never leaves its file: it is not logged, printed or
// returned. Requests are served one at a time.
class SoftwarePasskeyService final : public PasskeyService {
 public:
  SoftwarePasskeyService(const std::filesystem::path& dataDirectory, PasskeyRelyingParty relyingParty);

  std::expected<PasskeyCredential, AppAttestError> createCredential() override;
  std::expected<PasskeyAssertion, AppAttestError> getAssertion(std::span<const std::uint8_t> challenge,
                                                               const std::optional<std::string>& credentialId) override;

 private:
  std::filesystem::path folder_;
  PasskeyRelyingParty relyingParty_;
  std::mutex mutex_;
};

}  // namespace kovi
