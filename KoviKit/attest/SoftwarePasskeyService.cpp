#include "KoviKit/attest/SoftwarePasskeyService.h"

#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/x509.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <tuple>

#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace software_passkey {

// A passkey's file. `privateKey` is the key's DER, base64url; `counter` is the
// last value an assertion used.
struct StoredPasskey {
  std::int64_t version = 0;
  std::string credentialId;
  std::string relyingPartyId;
  std::string userHandle;
  std::string privateKey;
  std::int64_t counter = 0;
};

}  // namespace software_passkey

template <>
struct JsonRecordFields<software_passkey::StoredPasskey> : StrictJsonRecord {
  using Stored = software_passkey::StoredPasskey;
  static constexpr auto fields = std::tuple{
      field("version", &Stored::version),       field("credentialId", &Stored::credentialId),
      field("relyingPartyId", &Stored::relyingPartyId), field("userHandle", &Stored::userHandle),
      field("privateKey", &Stored::privateKey), field("counter", &Stored::counter),
  };
};

namespace {

using software_passkey::StoredPasskey;

constexpr std::int64_t kVersion = 1;
constexpr std::size_t kFileLimit = 16 * 1024;
constexpr std::size_t kIdBytes = 16;
// WebAuthn flags: user present (UP) and user verified (UV).
constexpr std::uint8_t kFlags = 0x01 | 0x04;

struct KeyDeleter {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};
struct SigningDeleter {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Key = std::unique_ptr<EVP_PKEY, KeyDeleter>;

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

std::vector<std::uint8_t> derOf(EVP_PKEY* key, bool privatePart) {
  unsigned char* buffer = nullptr;
  const int length = privatePart ? i2d_PrivateKey(key, &buffer) : i2d_PUBKEY(key, &buffer);
  if (length <= 0) return {};
  std::vector<std::uint8_t> der(buffer, buffer + length);
  OPENSSL_clear_free(buffer, static_cast<std::size_t>(length));
  return der;
}

std::expected<void, AppAttestError> store(const std::filesystem::path& path, const StoredPasskey& passkey) {
  const std::string text = encodeRecord(passkey).dump();
  if (auto written = writeFileAtomically(path, text, kPrivateFileMode); !written) {
    return std::unexpected(failure(passkeyErrorCode::failed, written.error()));
  }
  return {};
}

std::expected<StoredPasskey, AppAttestError> load(const std::filesystem::path& path) {
  auto bytes = readFileLimited(path, kFileLimit);
  if (!bytes) {
    const bool missing = bytes.error().failure == FileReadFailure::missing;
    return std::unexpected(failure(missing ? passkeyErrorCode::notFound : passkeyErrorCode::failed,
                                   path.string() + ": " + bytes.error().detail));
  }
  auto stored = decodeJsonText<StoredPasskey>(*bytes);
  if (!stored) return std::unexpected(failure(passkeyErrorCode::failed, path.string() + ": " + stored.error().message()));
  if (stored->version != kVersion) {
    return std::unexpected(failure(passkeyErrorCode::failed, path.string() + ": unsupported version"));
  }
  return std::move(*stored);
}

std::expected<std::vector<std::uint8_t>, AppAttestError> sign(const StoredPasskey& passkey,
                                                              std::span<const std::uint8_t> message) {
  auto der = base64UrlDecode(passkey.privateKey);
  if (!der) return std::unexpected(failure(passkeyErrorCode::failed, "stored key is not base64url"));
  const unsigned char* cursor = der->data();
  Key key(d2i_PrivateKey(EVP_PKEY_EC, nullptr, &cursor, static_cast<long>(der->size())));
  OPENSSL_cleanse(der->data(), der->size());
  if (!key) return std::unexpected(failure(passkeyErrorCode::failed, "stored key does not decode"));
  std::unique_ptr<EVP_MD_CTX, SigningDeleter> context(EVP_MD_CTX_new());
  std::size_t length = 0;
  if (!context || EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) != 1 ||
      EVP_DigestSign(context.get(), nullptr, &length, message.data(), message.size()) != 1) {
    return std::unexpected(failure(passkeyErrorCode::failed, "signing failed"));
  }
  std::vector<std::uint8_t> signature(length);
  if (EVP_DigestSign(context.get(), signature.data(), &length, message.data(), message.size()) != 1) {
    return std::unexpected(failure(passkeyErrorCode::failed, "signing failed"));
  }
  signature.resize(length);
  return signature;
}

}  // namespace

SoftwarePasskeyService::SoftwarePasskeyService(const std::filesystem::path& dataDirectory,
                                               PasskeyRelyingParty relyingParty)
    : folder_(dataDirectory / "Kovi" / "Passkeys" / "v1"), relyingParty_(std::move(relyingParty)) {}

std::expected<PasskeyCredential, AppAttestError> SoftwarePasskeyService::createCredential() {
  const std::lock_guard lock(mutex_);
  Key key(EVP_EC_gen("P-256"));
  if (!key) return std::unexpected(failure(passkeyErrorCode::failed, "key generation failed"));
  auto id = randomBytes(kIdBytes);
  if (!id) return std::unexpected(id.error());
  auto userHandle = randomBytes(kIdBytes);
  if (!userHandle) return std::unexpected(userHandle.error());

  std::vector<std::uint8_t> privateDer = derOf(key.get(), true);
  StoredPasskey stored{kVersion, base64UrlEncode(*id), relyingParty_.id, base64UrlEncode(*userHandle),
                       base64UrlEncode(privateDer), 0};
  OPENSSL_cleanse(privateDer.data(), privateDer.size());
  auto written = store(folder_ / (stored.credentialId + ".json"), stored);
  OPENSSL_cleanse(stored.privateKey.data(), stored.privateKey.size());
  if (!written) return std::unexpected(written.error());
  return PasskeyCredential{stored.credentialId, derOf(key.get(), false), *userHandle};
}

std::expected<PasskeyAssertion, AppAttestError> SoftwarePasskeyService::getAssertion(
    std::span<const std::uint8_t> challenge, const std::optional<std::string>& credentialId) {
  const std::lock_guard lock(mutex_);
  std::filesystem::path path;
  if (credentialId) {
    if (!isCredentialId(*credentialId)) return std::unexpected(failure(passkeyErrorCode::notFound, "not a credential id"));
    path = folder_ / (*credentialId + ".json");
  } else {
    // Without a name, the only passkey there is; with several, the caller
    // must choose.
    std::error_code error;
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error)) {
      if (entry.path().extension() == ".json" && isCredentialId(entry.path().stem().string())) found.push_back(entry.path());
    }
    if (found.empty()) return std::unexpected(failure(passkeyErrorCode::notFound, "no passkey has been made"));
    if (found.size() > 1) return std::unexpected(failure(passkeyErrorCode::failed, "several passkeys; name one"));
    path = found.front();
  }
  auto stored = load(path);
  if (!stored) return std::unexpected(stored.error());
  if (stored->relyingPartyId != relyingParty_.id) {
    return std::unexpected(failure(passkeyErrorCode::notFound, "the passkey belongs to another relying party"));
  }
  // The counter is 4 bytes on the wire; a passkey that used them all is done.
  if (stored->counter < 0 || stored->counter >= std::numeric_limits<std::uint32_t>::max()) {
    return std::unexpected(failure(passkeyErrorCode::failed, "the passkey's counter is exhausted"));
  }
  const auto counter = static_cast<std::uint32_t>(stored->counter + 1);

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
  auto signature = sign(*stored, signedBytes);
  if (!signature) return std::unexpected(signature.error());

  // The counter is on disk before anyone sees an assertion that used it.
  stored->counter = counter;
  auto written = store(path, *stored);
  OPENSSL_cleanse(stored->privateKey.data(), stored->privateKey.size());
  if (!written) return std::unexpected(written.error());

  auto userHandle = base64UrlDecode(stored->userHandle);
  return PasskeyAssertion{stored->credentialId, std::move(authenticatorData),
                          std::vector<std::uint8_t>(clientDataText.begin(), clientDataText.end()),
                          std::move(*signature), userHandle.value_or(std::vector<std::uint8_t>{})};
}

}  // namespace kovi
