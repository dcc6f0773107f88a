#include "KoviKit/attest/P256Key.h"

#include <openssl/crypto.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include "KoviKit/foundation/Sha256.h"

namespace kovi {

std::expected<std::vector<std::uint8_t>, std::string> p256PublicKeyDer(EVP_PKEY* key) {
  unsigned char* der = nullptr;
  const int length = i2d_PUBKEY(key, &der);
  if (length <= 0) return std::unexpected(std::string("cannot encode the public key"));
  std::vector<std::uint8_t> bytes(der, der + length);
  OPENSSL_free(der);
  return bytes;
}

std::expected<P256Signer, std::string> P256Signer::create(EVP_PKEY* key) {
  openssl::PkeyContext context(EVP_PKEY_CTX_new_from_pkey(nullptr, key, nullptr));
  if (!context || EVP_PKEY_sign_init(context.get()) != 1 ||
      EVP_PKEY_CTX_set_signature_md(context.get(), EVP_sha256()) != 1) {
    return std::unexpected(std::string("cannot start an ECDSA signature"));
  }
  return P256Signer(std::move(context));
}

std::expected<std::vector<std::uint8_t>, std::string> P256Signer::sign(std::span<const std::uint8_t> message) {
  const Sha256Digest digest = sha256(message);
  std::size_t length = 0;
  if (EVP_PKEY_sign(context_.get(), nullptr, &length, digest.data(), digest.size()) != 1) {
    return std::unexpected(std::string("cannot start an ECDSA signature"));
  }
  std::vector<std::uint8_t> signature(length);
  if (EVP_PKEY_sign(context_.get(), signature.data(), &length, digest.data(), digest.size()) != 1) {
    return std::unexpected(std::string("ECDSA signing failed"));
  }
  signature.resize(length);
  return signature;
}

std::expected<std::vector<std::uint8_t>, std::string> p256SignSha256(EVP_PKEY* key,
                                                                   std::span<const std::uint8_t> message) {
  auto signer = P256Signer::create(key);
  if (!signer) return std::unexpected(signer.error());
  return signer->sign(message);
}

std::expected<std::string, std::string> p256PrivateKeyPem(EVP_PKEY* key) {
  openssl::Bio bio(BIO_new(BIO_s_mem()));
  if (!bio || PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) != 1) {
    return std::unexpected(std::string("cannot encode the private key"));
  }
  char* data = nullptr;
  const long length = BIO_get_mem_data(bio.get(), &data);
  std::string pem(data, static_cast<std::size_t>(length));
  OPENSSL_cleanse(data, static_cast<std::size_t>(length));
  return pem;
}

std::expected<openssl::Pkey, std::string> p256PrivateKeyFromPem(std::string& pem) {
  openssl::Bio bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
  openssl::Pkey key(bio ? PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr) : nullptr);
  OPENSSL_cleanse(pem.data(), pem.size());
  if (!key || EVP_PKEY_is_a(key.get(), "EC") != 1) return std::unexpected(std::string("not an EC private key"));
  return key;
}

}  // namespace kovi
