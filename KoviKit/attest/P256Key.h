#pragma once

// The P-256 key handling the software device key and the software passkey
// share: encoding, signing and the PKCS#8 PEM form their files hold.

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/attest/OpenSslHandles.h"

namespace kovi {

// The DER SubjectPublicKeyInfo of `key`.
std::expected<std::vector<std::uint8_t>, std::string> p256PublicKeyDer(EVP_PKEY* key);

// Makes DER ECDSA signatures with one P-256 private key over SHA-256 of a
// message, the same signatures EVP_DigestSign with SHA-256 makes. The signing
// context is prepared once, so a signer kept for many signatures pays only
// for each signature. One thread at a time.
class P256Signer {
 public:
  static std::expected<P256Signer, std::string> create(EVP_PKEY* key);
  std::expected<std::vector<std::uint8_t>, std::string> sign(std::span<const std::uint8_t> message);

 private:
  explicit P256Signer(openssl::PkeyContext context) : context_(std::move(context)) {}
  openssl::PkeyContext context_;
};

// A DER ECDSA signature over SHA-256(`message`), for a key that signs once.
std::expected<std::vector<std::uint8_t>, std::string> p256SignSha256(EVP_PKEY* key,
                                                                   std::span<const std::uint8_t> message);

// The private key as PKCS#8 PEM. The caller wipes the text once written.
std::expected<std::string, std::string> p256PrivateKeyPem(EVP_PKEY* key);

// The EC private key in `pem`; `pem` is wiped whatever the outcome.
std::expected<openssl::Pkey, std::string> p256PrivateKeyFromPem(std::string& pem);

}  // namespace kovi
