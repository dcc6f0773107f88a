#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/attest/DeviceKeyService.h"

struct evp_pkey_st;

namespace kovi {

// The attestation environment a software key reports: it proves nothing about
// the hardware, so it never claims production.
inline constexpr std::string_view kSoftwareDeviceKeyEnvironment = "development";

// The portable device key service: OpenSSL P-256 keys kept as files under
// `<dataDirectory>/Kovi/DeviceKeys/v1/`.
//
// - A key's identifier is the lowercase hex SHA-256 of its DER
//   SubjectPublicKeyInfo; its private key is `<keyId>.pem` (PKCS#8), and its
//   assertion counter `<keyId>.counter`, both mode 0600 and written atomically.
// - The attestation object is the UTF-8 JSON
//   {"fmt":"kovi-software-p256","publicKey":<base64 SPKI DER>,
//    "signature":<base64 DER ECDSA-SHA256 over the client-data hash>}.
// - An assertion's authenticator data is SHA-256(appIdentity) followed by the
//   4-byte big-endian counter. The counter file holds a high-water mark: every
//   counter at or below it may have been used. A service reserves a block of
//   counters by storing a mark kCounterBlock ahead before the first of them is
//   returned, then hands them out from memory. On every assertion, under the
//   key's lock file, it re-reads the mark; if another process stored one since,
//   this block is abandoned and the next starts past that mark. So no two
//   assertions of a key ever share a counter, even across a crash, and counters
//   never go backwards; they rise by one within a process and jump past the
//   unused rest of a block after a restart.
//
// Private keys are never logged, printed or put in an error.
class SoftwareDeviceKeyService final : public DeviceKeyService {
 public:
  // Counters reserved per durable write: a restart wastes at most this many of
  // the 2^32 a key has, and a stored write is paid once per this many assertions.
  static constexpr std::int64_t kCounterBlock = 64;

  SoftwareDeviceKeyService(std::filesystem::path dataDirectory, std::string appIdentity);

  bool isSupported() const override { return true; }
  std::expected<std::string, AppAttestError> generateKey() override;
  std::expected<std::vector<std::uint8_t>, AppAttestError> attestKey(std::string_view keyId,
                                                                   const Sha256Digest& clientDataHash) override;
  std::expected<AppAttestAssertion, AppAttestError> generateAssertion(std::string_view keyId,
                                                                     const Sha256Digest& clientDataHash) override;

  // The DER SubjectPublicKeyInfo of `keyId`, as a service registers it.
  std::expected<std::vector<std::uint8_t>, AppAttestError> publicKey(std::string_view keyId) const;

  const std::string& appIdentity() const { return appIdentity_; }
  const std::filesystem::path& keyDirectory() const { return keyDirectory_; }

 private:
  // The private key of `keyId`, read and checked once, then kept: signing
  // should cost a signature, not a file read and a key check.
  std::expected<std::shared_ptr<evp_pkey_st>, std::string> loadedKey(std::string_view keyId) const;

  // The counters this service reserved for one key.
  struct CounterBlock {
    std::int64_t next = 0;
    std::int64_t reservedThrough = 0;
    // The counter file's text as this service stored it: the same text on disk
    // means nobody reserved since.
    std::string storedText;
  };

  std::expected<std::uint32_t, AppAttestError> nextCounter(std::string_view keyId);

  std::filesystem::path keyDirectory_;
  std::string appIdentity_;
  // Serialises assertions within the process; the lock file does it across processes.
  std::mutex assertionMutex_;
  std::map<std::string, CounterBlock, std::less<>> counterBlocks_;  // guarded by assertionMutex_
  mutable std::mutex loadedMutex_;
  mutable std::map<std::string, std::shared_ptr<evp_pkey_st>, std::less<>> loaded_;
};

}  // namespace kovi
