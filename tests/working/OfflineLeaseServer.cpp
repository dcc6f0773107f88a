#include "tests/working/OfflineLeaseServer.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <stdexcept>
#include <vector>

#include "KoviKit/foundation/Base64.h"

namespace kovi::testing {

struct OfflineLeaseServer::Key {
  EVP_PKEY* pkey = nullptr;
};

OfflineLeaseServer::OfflineLeaseServer() : key_(std::make_unique<Key>()) {
  key_->pkey = EVP_EC_gen("P-256");
  if (key_->pkey == nullptr) throw std::runtime_error("cannot generate a P-256 key");
}

OfflineLeaseServer::~OfflineLeaseServer() { EVP_PKEY_free(key_->pkey); }

std::string OfflineLeaseServer::publicKeyBase64() const {
  unsigned char* der = nullptr;
  const int length = i2d_PUBKEY(key_->pkey, &der);
  if (length <= 0) throw std::runtime_error("cannot encode the public key");
  std::vector<std::uint8_t> bytes(der, der + length);
  OPENSSL_free(der);
  return base64Encode(bytes);
}

std::string OfflineLeaseServer::sign(const nlohmann::ordered_json& lease) const {
  // Integers and plain strings only, so the compact dump is the canonical text.
  const std::string payload = R"({"purpose":"kovi-working-offline-lease-v1","lease":)" + lease.dump() + "}";
  EVP_MD_CTX* context = EVP_MD_CTX_new();
  std::size_t length = 0;
  std::vector<std::uint8_t> signature;
  bool signed_ = EVP_DigestSignInit(context, nullptr, EVP_sha256(), nullptr, key_->pkey) == 1 &&
                 EVP_DigestSign(context, nullptr, &length,
                                reinterpret_cast<const unsigned char*>(payload.data()), payload.size()) == 1;
  if (signed_) {
    signature.resize(length);
    signed_ = EVP_DigestSign(context, signature.data(), &length,
                             reinterpret_cast<const unsigned char*>(payload.data()), payload.size()) == 1;
    signature.resize(length);
  }
  EVP_MD_CTX_free(context);
  if (!signed_) throw std::runtime_error("cannot sign the lease");
  return base64Encode(signature);
}

std::string OfflineLeaseServer::envelope(const nlohmann::ordered_json& lease) const {
  nlohmann::ordered_json document = nlohmann::ordered_json::object();
  document["lease"] = lease;
  document["signature"] = sign(lease);
  return document.dump();
}

}  // namespace kovi::testing
