#include "KoviKit/attest/SoftwarePasskeyService.h"

#include <openssl/crypto.h>
#include <openssl/ec.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <tuple>

#include "KoviKit/foundation/FileLock.h"
#include "KoviKit/attest/P256Key.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace software_passkey {

// A passkey's record beside its key: whose it is and the last counter value
// an assertion used.
struct StoredPasskey {
  std::int64_t version = 0;
  std::string credentialId;
  std::string relyingPartyId;
  std::string userHandle;  // base64url
  std::int64_t counter = 0;
};

}  // namespace software_passkey

template <>
struct JsonRecordFields<software_passkey::StoredPasskey> : StrictJsonRecord {
  using Stored = software_passkey::StoredPasskey;
  static constexpr auto fields = std::tuple{
      field("version", &Stored::version),
      field("credentialId", &Stored::credentialId),
      field("relyingPartyId", &Stored::relyingPartyId),
      field("userHandle", &Stored::userHandle),
      field("counter", &Stored::counter),
  };
};

namespace {

using software_passkey::StoredPasskey;

constexpr std::int64_t kVersion = 1;
constexpr std::size_t kFileLimit = 4096;
constexpr std::size_t kIdBytes = 16;
constexpr std::filesystem::perms kOwnerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
// WebAuthn flags: user present (UP) and user verified (UV).
constexpr std::uint8_t kFlags = 0x01 | 0x04;

AppAttestError failure(std::string_view code, std::string detail) { return {std::string(code), std::move(detail)}; }

std::expected<std::vector<std::uint8_t>, AppAttestError> randomBytes(std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) {
    return std::unexpected(failure(passkeyErrorCode::failed, "no randomness"));
  }
  return bytes;
}

// Credential ids are base64url of random bytes, so they also name files;
// anything else cannot be one of ours.
bool isCredentialId(std::string_view text) {
  return !text.empty() && text.size() <= 64 && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
}

std::expected<void, AppAttestError> writeRecord(const std::filesystem::path& path, const StoredPasskey& passkey) {
  if (auto written = writeFileAtomically(path, encodeRecord(passkey).dump(), kOwnerOnly); !written) {
    return std::unexpected(failure(passkeyErrorCode::failed, written.error()));
  }
  return {};
}

std::expected<StoredPasskey, AppAttestError> readRecord(const std::filesystem::path& path) {
  auto bytes = readFileLimited(path, kFileLimit);
  if (!bytes) {
    const bool missing = bytes.error().failure == FileReadFailure::missing;
    return std::unexpected(failure(missing ? passkeyErrorCode::notFound : passkeyErrorCode::failed,
                                   "cannot read " + path.string() + ": " + bytes.error().detail));
  }
  auto stored = decodeJsonText<StoredPasskey>(*bytes);
  if (!stored) {
    return std::unexpected(failure(passkeyErrorCode::failed, path.string() + " is corrupt: " + stored.error().message()));
  }
  if (stored->version != kVersion) {
    return std::unexpected(failure(passkeyErrorCode::failed, path.string() + ": unsupported version"));
  }
  return std::move(*stored);
}

std::expected<openssl::Pkey, AppAttestError> readKey(const std::filesystem::path& path) {
  auto pem = readFileLimited(path, kFileLimit);
  if (!pem) return std::unexpected(failure(passkeyErrorCode::failed, "cannot read " + path.string()));
  auto key = p256PrivateKeyFromPem(*pem);
  if (!key) return std::unexpected(failure(passkeyErrorCode::failed, path.string() + ": " + key.error()));
  return std::move(*key);
}

}  // namespace

SoftwarePasskeyService::SoftwarePasskeyService(const std::filesystem::path& dataDirectory,
                                               PasskeyRelyingParty relyingParty)
    : folder_(dataDirectory / "Kovi" / "Passkeys" / "v1"), relyingParty_(std::move(relyingParty)) {}

std::expected<PasskeyCredential, AppAttestError> SoftwarePasskeyService::createCredential() {
  const std::lock_guard lock(mutex_);
  openssl::Pkey key(EVP_EC_gen("P-256"));
  if (!key) return std::unexpected(failure(passkeyErrorCode::failed, "cannot generate a P-256 key"));
  auto publicKey = p256PublicKeyDer(key.get());
  if (!publicKey) return std::unexpected(failure(passkeyErrorCode::failed, publicKey.error()));
  auto id = randomBytes(kIdBytes);
  if (!id) return std::unexpected(id.error());
  auto userHandle = randomBytes(kIdBytes);
  if (!userHandle) return std::unexpected(userHandle.error());
  const StoredPasskey stored{kVersion, base64UrlEncode(*id), relyingParty_.id, base64UrlEncode(*userHandle), 0};

  auto pem = p256PrivateKeyPem(key.get());
  if (!pem) return std::unexpected(failure(passkeyErrorCode::failed, pem.error()));
  auto writtenKey = writeFileAtomically(folder_ / (stored.credentialId + ".pem"), *pem, kOwnerOnly);
  OPENSSL_cleanse(pem->data(), pem->size());
  if (!writtenKey) return std::unexpected(failure(passkeyErrorCode::failed, writtenKey.error()));
  // The record comes last: a passkey is listed only once its key is on disk.
  if (auto written = writeRecord(folder_ / (stored.credentialId + ".json"), stored); !written) {
    return std::unexpected(written.error());
  }
  return PasskeyCredential{stored.credentialId, std::move(*publicKey), std::move(*userHandle)};
}

std::expected<PasskeyAssertion, AppAttestError> SoftwarePasskeyService::getAssertion(
    std::span<const std::uint8_t> challenge, const std::optional<std::string>& credentialId) {
  std::string id;
  if (credentialId) {
    if (!isCredentialId(*credentialId)) return std::unexpected(failure(passkeyErrorCode::notFound, "not a credential id"));
    id = *credentialId;
  } else {
    // Without a name, the only passkey there is; with several, the caller
    // must choose.
    std::error_code error;
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
      const std::string stem = entry.path().stem().string();
      if (entry.path().extension() == ".json" && isCredentialId(stem)) found.push_back(stem);
    }
    if (found.empty()) return std::unexpected(failure(passkeyErrorCode::notFound, "no passkey has been made"));
    if (found.size() > 1) return std::unexpected(failure(passkeyErrorCode::failed, "several passkeys; name one"));
    id = found.front();
  }

  const std::lock_guard lock(mutex_);
  auto fileLock = FileLock::acquire(folder_ / (id + ".lock"));
  if (!fileLock) return std::unexpected(failure(passkeyErrorCode::failed, fileLock.error()));
  const std::filesystem::path recordPath = folder_ / (id + ".json");
  auto stored = readRecord(recordPath);
  if (!stored) return std::unexpected(stored.error());
  if (stored->relyingPartyId != relyingParty_.id) {
    return std::unexpected(failure(passkeyErrorCode::notFound, "the passkey belongs to another relying party"));
  }
  auto key = readKey(folder_ / (id + ".pem"));
  if (!key) return std::unexpected(key.error());
  // The counter is 4 bytes on the wire; a passkey that used them all is done.
  if (stored->counter < 0 || stored->counter >= std::int64_t{std::numeric_limits<std::uint32_t>::max()}) {
    return std::unexpected(failure(passkeyErrorCode::failed, "the passkey's counter is used up; make a new one"));
  }
  const auto counter = static_cast<std::uint32_t>(stored->counter + 1);
  // The counter is on disk before any assertion that uses it exists.
  stored->counter = counter;
  if (auto written = writeRecord(recordPath, *stored); !written) return std::unexpected(written.error());

  std::vector<std::uint8_t> authenticatorData;
  const Sha256Digest relyingPartyHash = sha256(relyingParty_.id);
  authenticatorData.assign(relyingPartyHash.begin(), relyingPartyHash.end());
  authenticatorData.push_back(kFlags);
  for (int shift = 24; shift >= 0; shift -= 8) authenticatorData.push_back(static_cast<std::uint8_t>(counter >> shift));

  nlohmann::ordered_json clientData;
  clientData["type"] = "webauthn.get";
  clientData["challenge"] = base64UrlEncode(challenge);
  clientData["origin"] = relyingParty_.origin;
  const std::string clientDataText = clientData.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);

  std::vector<std::uint8_t> signedBytes = authenticatorData;
  const Sha256Digest clientDataHash = sha256(clientDataText);
  signedBytes.insert(signedBytes.end(), clientDataHash.begin(), clientDataHash.end());
  auto signature = p256SignSha256(key->get(), signedBytes);
  if (!signature) return std::unexpected(failure(passkeyErrorCode::failed, signature.error()));

  return PasskeyAssertion{stored->credentialId, std::move(authenticatorData),
                          std::vector<std::uint8_t>(clientDataText.begin(), clientDataText.end()),
                          std::move(*signature), base64UrlDecode(stored->userHandle).value_or(std::vector<std::uint8_t>{})};
}

}  // namespace kovi
