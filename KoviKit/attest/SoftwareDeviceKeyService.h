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
//   counter at or below it may have been used. Under the key's lock file, a
//   service reserves a block of counters by storing a mark kCounterBlock ahead
//   before the first of them is returned, then hands them out from memory.
//   Reservations start past the stored mark, so blocks never overlap and no
//   two assertions of a key share a counter, even across a crash. So that
//   counters also rise when processes take turns on a key, every assertion
//   first checks that the mark it reserved under is still the file on disk
//   (a FileSnapshot, one fstat); if another process stored a mark since, the
//   rest of this block is abandoned and the next starts past that mark.
//   Counters rise by one within a process and jump past the unused rest of a
//   block after a restart.
//
// Private keys are never logged, printed or put in an error.
class SoftwareDeviceKeyService final : public DeviceKeyService {
 public:
  // Counters reserved per durable write, which costs about as much as forty
  // signatures on a disk: paid once per this many assertions, it adds a few
  // percent to each. A restart wastes at most this many of the 2^32 a key
  // has, so a key outlives four million restarts.
  static constexpr std::int64_t kCounterBlock = 1024;

  SoftwareDeviceKeyService(std::filesystem::path dataDirectory, std::string appIdentity);
  ~SoftwareDeviceKeyService() override;

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

  // What asserting with one key needs besides the key: its lock file, the
  // counters this service reserved and a prepared signer.
  struct AssertingKey;

  std::expected<AssertingKey*, AppAttestError> assertingKey(std::string_view keyId, evp_pkey_st* key);
  std::expected<std::uint32_t, AppAttestError> nextCounter(AssertingKey& asserting, std::string_view keyId);
  // Reads the stored mark and, when this service's block is used up or
  // another's mark replaced it, reserves the next block; under the key's lock.
  std::expected<void, AppAttestError> reserve(AssertingKey& asserting, const std::filesystem::path& counterPath);

  std::filesystem::path keyDirectory_;
  std::string appIdentity_;
  Sha256Digest appIdentityHash_;
  // Serialises assertions within the process; a key's lock file serialises
  // its reservations across processes.
  std::mutex assertionMutex_;
  std::map<std::string, std::unique_ptr<AssertingKey>, std::less<>> asserting_;  // guarded by assertionMutex_
  mutable std::mutex loadedMutex_;
  mutable std::map<std::string, std::shared_ptr<evp_pkey_st>, std::less<>> loaded_;
};

}  // namespace kovi
