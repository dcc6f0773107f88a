#include "KoviKit/attest/SoftwareDeviceKeyService.h"

#include <openssl/crypto.h>
#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "KoviKit/attest/OpenSslHandles.h"
#include "KoviKit/attest/P256Key.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/CanonicalJsonWriter.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/FileLock.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {
namespace {

constexpr std::filesystem::perms kOwnerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
// A PKCS#8 PEM of a P-256 key is about 240 bytes; anything far larger is not ours.
constexpr std::size_t kKeyFileLimit = 4096;
constexpr std::size_t kCounterFileLimit = 256;

// The stored assertion counter: the last value an assertion used.
struct DeviceKeyCounter {
  std::int64_t counter = 0;
  bool operator==(const DeviceKeyCounter&) const = default;
};

}  // namespace

template <>
struct JsonRecordFields<DeviceKeyCounter> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("counter", &DeviceKeyCounter::counter)};
};

namespace {

AppAttestError failure(std::string_view code, std::string detail) { return {std::string(code), std::move(detail)}; }

// Key identifiers become file names, so only the exact form generateKey
// makes is accepted: nothing else can reach outside the key directory.
bool isKeyId(std::string_view keyId) {
  const auto isLowerHex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
  return keyId.size() == 64 && std::all_of(keyId.begin(), keyId.end(), isLowerHex);
}

std::string counterText(std::int64_t counter) {
  CanonicalJsonWriter writer;
  writer.beginObject().key("counter").value(counter).endObject();
  return writer.take();
}

}  // namespace

struct SoftwareDeviceKeyService::AssertingKey {
  // The key's lock file, kept open: reserving takes it, handing out does not.
  FileLock lock;
  P256Signer signer;
  // The counter file as this service last read or wrote it; while it is
  // current nobody reserved since. None: read it again under the lock.
  std::optional<FileSnapshot> mark;
  std::int64_t next = 0;
  std::int64_t reservedThrough = 0;
};

SoftwareDeviceKeyService::~SoftwareDeviceKeyService() = default;

SoftwareDeviceKeyService::SoftwareDeviceKeyService(std::filesystem::path dataDirectory, std::string appIdentity)
    : keyDirectory_(std::move(dataDirectory) / "Kovi" / "DeviceKeys" / "v1"),
      appIdentity_(std::move(appIdentity)),
      appIdentityHash_(sha256(appIdentity_)) {}

namespace {

// The private key of `keyId`, checked to be a P-256 key whose public half
// still hashes to `keyId`: a swapped or damaged file is refused, not used.
std::expected<openssl::Pkey, std::string> loadKey(const std::filesystem::path& directory, std::string_view keyId) {
  if (!isKeyId(keyId)) return std::unexpected(std::string("not a device key identifier"));
  const std::filesystem::path path = directory / (std::string(keyId) + ".pem");
  auto pem = readFileLimited(path, kKeyFileLimit);
  if (!pem) {
    if (pem.error().failure == FileReadFailure::missing) return std::unexpected("no device key " + std::string(keyId));
    return std::unexpected("cannot read " + path.string() + ": " + pem.error().detail);
  }
  auto key = p256PrivateKeyFromPem(*pem);
  if (!key) return std::unexpected(path.string() + " is not an EC private key");
  auto der = p256PublicKeyDer(key->get());
  if (!der) return std::unexpected(der.error());
  if (lowercaseHex(sha256(*der)) != keyId) return std::unexpected(path.string() + " holds another key than its name");
  return key;
}

}  // namespace

std::expected<std::shared_ptr<EVP_PKEY>, std::string> SoftwareDeviceKeyService::loadedKey(
    std::string_view keyId) const {
  std::scoped_lock lock(loadedMutex_);
  if (const auto found = loaded_.find(keyId); found != loaded_.end()) return found->second;
  auto key = loadKey(keyDirectory_, keyId);
  if (!key) return std::unexpected(key.error());
  std::shared_ptr<EVP_PKEY> shared(key->release(), EVP_PKEY_free);
  loaded_.emplace(std::string(keyId), shared);
  return shared;
}

std::expected<std::string, AppAttestError> SoftwareDeviceKeyService::generateKey() {
  openssl::Pkey key(EVP_EC_gen("P-256"));
  if (!key) return std::unexpected(failure("attestation_failed", "cannot generate a P-256 key"));
  auto der = p256PublicKeyDer(key.get());
  if (!der) return std::unexpected(failure("attestation_failed", der.error()));
  std::string keyId = lowercaseHex(sha256(*der));

  auto pem = p256PrivateKeyPem(key.get());
  if (!pem) return std::unexpected(failure("attestation_failed", pem.error()));
  // The counter exists before the key does, so a key file never stands
  // without the counter that guards it.
  if (auto written = writeFileAtomically(keyDirectory_ / (keyId + ".counter"), counterText(0), kOwnerOnly); !written) {
    return std::unexpected(failure("attestation_failed", written.error()));
  }
  auto written = writeFileAtomically(keyDirectory_ / (keyId + ".pem"), *pem, kOwnerOnly);
  OPENSSL_cleanse(pem->data(), pem->size());
  if (!written) return std::unexpected(failure("attestation_failed", written.error()));
  return keyId;
}

std::expected<std::vector<std::uint8_t>, AppAttestError> SoftwareDeviceKeyService::publicKey(
    std::string_view keyId) const {
  auto key = loadedKey(keyId);
  if (!key) return std::unexpected(failure("attestation_failed", key.error()));
  auto der = p256PublicKeyDer(key->get());
  if (!der) return std::unexpected(failure("attestation_failed", der.error()));
  return *der;
}

std::expected<std::vector<std::uint8_t>, AppAttestError> SoftwareDeviceKeyService::attestKey(
    std::string_view keyId, const Sha256Digest& clientDataHash) {
  auto key = loadedKey(keyId);
  if (!key) return std::unexpected(failure("attestation_failed", key.error()));
  auto der = p256PublicKeyDer(key->get());
  if (!der) return std::unexpected(failure("attestation_failed", der.error()));
  auto signature = p256SignSha256(key->get(), clientDataHash);
  if (!signature) return std::unexpected(failure("attestation_failed", signature.error()));
  CanonicalJsonWriter writer;
  writer.beginObject()
      .key("fmt")
      .value("kovi-software-p256")
      .key("publicKey")
      .value(base64Encode(*der))
      .key("signature")
      .value(base64Encode(*signature))
      .endObject();
  const std::string_view text = writer.text();
  return std::vector<std::uint8_t>(text.begin(), text.end());
}

std::expected<SoftwareDeviceKeyService::AssertingKey*, AppAttestError> SoftwareDeviceKeyService::assertingKey(
    std::string_view keyId, EVP_PKEY* key) {
  if (const auto found = asserting_.find(keyId); found != asserting_.end()) return found->second.get();
  auto lock = FileLock::open(keyDirectory_ / (std::string(keyId) + ".lock"));
  if (!lock) return std::unexpected(failure("assertion_failed", lock.error()));
  auto signer = P256Signer::create(key);
  if (!signer) return std::unexpected(failure("assertion_failed", signer.error()));
  auto made = std::make_unique<AssertingKey>(AssertingKey{std::move(*lock), std::move(*signer), std::nullopt, 0, 0});
  return asserting_.emplace(std::string(keyId), std::move(made)).first->second.get();
}

std::expected<void, AppAttestError> SoftwareDeviceKeyService::reserve(AssertingKey& asserting,
                                                                   const std::filesystem::path& counterPath) {
  auto held = asserting.lock.hold();
  if (!held) return std::unexpected(failure("assertion_failed", held.error()));
  if (!asserting.mark || !asserting.mark->isCurrent()) {
    // First use here, or another process reserved after this one: start past
    // its mark. A missing or unreadable mark is refused rather than restarted
    // at zero: starting over would repeat counters the service has already seen.
    asserting.mark.reset();
    auto stored = FileSnapshot::read(counterPath, kCounterFileLimit);
    if (!stored) {
      return std::unexpected(
          failure("assertion_failed", "cannot read " + counterPath.string() + ": " + stored.error().detail));
    }
    auto mark = decodeJsonText<DeviceKeyCounter>(stored->contents());
    if (!mark) {
      return std::unexpected(
          failure("assertion_failed", counterPath.string() + " is corrupt: " + mark.error().message()));
    }
    if (mark->counter < 0) return std::unexpected(failure("assertion_failed", counterPath.string() + " is corrupt"));
    asserting.next = mark->counter + 1;
    asserting.reservedThrough = mark->counter;
    asserting.mark = std::move(*stored);
  }
  constexpr std::int64_t kLastCounter = std::numeric_limits<std::uint32_t>::max();
  if (asserting.next > kLastCounter) {
    return std::unexpected(failure("assertion_failed", "the key's assertion counter is used up; register a new key"));
  }
  if (asserting.next <= asserting.reservedThrough) return {};
  const std::int64_t mark = std::min(asserting.next + kCounterBlock - 1, kLastCounter);
  // What is on disk is unknown until the new mark is written and read back.
  asserting.mark.reset();
  if (auto written = writeFileAtomically(counterPath, counterText(mark), kOwnerOnly); !written) {
    return std::unexpected(failure("assertion_failed", written.error()));
  }
  asserting.reservedThrough = mark;
  // The mark is stored, so the block is ours even when it cannot be read
  // back; the next assertion then reads it again and starts past it.
  if (auto stored = FileSnapshot::read(counterPath, kCounterFileLimit)) asserting.mark = std::move(*stored);
  return {};
}

std::expected<std::uint32_t, AppAttestError> SoftwareDeviceKeyService::nextCounter(AssertingKey& asserting,
                                                                                std::string_view keyId) {
  // Within a block that is still the latest on disk the counter is this
  // service's alone: no lock is needed to hand it out.
  const bool blockStands = asserting.mark && asserting.next <= asserting.reservedThrough && asserting.mark->isCurrent();
  if (!blockStands) {
    if (auto reserved = reserve(asserting, keyDirectory_ / (std::string(keyId) + ".counter")); !reserved) {
      return std::unexpected(reserved.error());
    }
  }
  return static_cast<std::uint32_t>(asserting.next++);
}

std::expected<AppAttestAssertion, AppAttestError> SoftwareDeviceKeyService::generateAssertion(
    std::string_view keyId, const Sha256Digest& clientDataHash) {
  auto key = loadedKey(keyId);
  if (!key) return std::unexpected(failure("assertion_failed", key.error()));

  // Counters are handed out and signed in one order within the process.
  std::scoped_lock processLock(assertionMutex_);
  auto asserting = assertingKey(keyId, key->get());
  if (!asserting) return std::unexpected(asserting.error());
  auto counter = nextCounter(**asserting, keyId);
  if (!counter) return std::unexpected(counter.error());

  AppAttestAssertion assertion;
  assertion.authenticatorData.reserve(appIdentityHash_.size() + 4);
  assertion.authenticatorData.assign(appIdentityHash_.begin(), appIdentityHash_.end());
  for (int shift = 24; shift >= 0; shift -= 8) {
    assertion.authenticatorData.push_back(static_cast<std::uint8_t>(*counter >> shift));
  }
  std::vector<std::uint8_t> message = assertion.authenticatorData;
  message.insert(message.end(), clientDataHash.begin(), clientDataHash.end());
  auto signature = (*asserting)->signer.sign(message);
  if (!signature) return std::unexpected(failure("assertion_failed", signature.error()));
  assertion.signature = std::move(*signature);
  return assertion;
}

}  // namespace kovi
