#include "KoviKit/attest/P256Verification.h"

#include <openssl/core_names.h>
#include <openssl/x509.h>

#include <algorithm>
#include <climits>
#include <string>

#include "KoviKit/attest/OpenSslHandles.h"

namespace kovi {
namespace {

// Only a P-256 key counts: a key of another curve or algorithm that happens
// to verify would let a different kind of key stand in for a device key.
bool isP256(EVP_PKEY* key) {
  if (EVP_PKEY_is_a(key, "EC") != 1) return false;
  char group[32] = {};
  std::size_t length = 0;
  if (EVP_PKEY_get_utf8_string_param(key, OSSL_PKEY_PARAM_GROUP_NAME, group, sizeof group, &length) != 1) {
    return false;
  }
  return std::string_view(group, length) == "prime256v1" || std::string_view(group, length) == "P-256";
}

}  // namespace

bool verifyP256Signature(std::span<const std::uint8_t> publicKeyDer, std::string_view message,
                         std::span<const std::uint8_t> derSignature) {
  if (publicKeyDer.size() > LONG_MAX) return false;
  const unsigned char* cursor = publicKeyDer.data();
  openssl::Pkey key(d2i_PUBKEY(nullptr, &cursor, static_cast<long>(publicKeyDer.size())));
  // Trailing bytes after the key would let two texts name one key.
  if (!key || cursor != publicKeyDer.data() + publicKeyDer.size() || !isP256(key.get())) return false;
  openssl::MdContext context(EVP_MD_CTX_new());
  if (!context || EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) != 1) return false;
  // OpenSSL accepts only the strict DER form of the signature, so one
  // signature has one spelling.
  return EVP_DigestVerify(context.get(), derSignature.data(), derSignature.size(),
                          reinterpret_cast<const unsigned char*>(message.data()), message.size()) == 1;
}

std::expected<std::uint32_t, std::string> verifyAssertion(std::span<const std::uint8_t> publicKeyDer,
                                                          std::string_view appIdentity,
                                                          const Sha256Digest& clientDataHash,
                                                          const AppAttestAssertion& assertion) {
  const Sha256Digest appHash = sha256(appIdentity);
  const auto& data = assertion.authenticatorData;
  if (data.size() != appHash.size() + 4) {
    return std::unexpected("authenticator data is " + std::to_string(data.size()) + " bytes, not 36");
  }
  if (!std::equal(appHash.begin(), appHash.end(), data.begin())) {
    return std::unexpected(std::string("authenticator data belongs to another app identity"));
  }
  std::string message(data.begin(), data.end());
  message.append(clientDataHash.begin(), clientDataHash.end());
  if (!verifyP256Signature(publicKeyDer, message, assertion.signature)) {
    return std::unexpected(std::string("signature does not verify with the registered key"));
  }
  return (std::uint32_t{data[32]} << 24) | (std::uint32_t{data[33]} << 16) | (std::uint32_t{data[34]} << 8) |
         std::uint32_t{data[35]};
}

}  // namespace kovi
