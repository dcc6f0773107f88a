#include "tests/working/OfflineLeaseServer.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <stdexcept>
#include <vector>

#include "KoviKit/foundation/Base64.h"

namespace kovi::testing {

nlohmann::ordered_json sampleOfflineLease() {
  return nlohmann::ordered_json::parse(R"({"version":1,"id":"lease-1","requestID":"request-1","sessionID":"session-1",)"
                                       R"("roomID":"room-1","accountID":"account-1","deviceID":"mac-1","epoch":3,)"
                                       R"("rulesHash":"rules-hash","deviceKeyHash":"device-key-hash",)"
                                       R"("serverKeyID":"server-1","issuedAt":1800000000000,)"
                                       R"("workUntil":1800000120000,"reconcileBy":1800000600000,"maxSequence":20,)"
                                       R"("anchor":{"sequence":7,"headHash":"head-hash","through":1799999999000,)"
                                       R"("monotonicMS":55000}})");
}

WorkingOfflineBinding sampleOfflineBinding() {
  return {"account-1", "room-1", "session-1", "mac-1", 3, "rules-hash", "device-key-hash",
          WorkingOfflineAnchor{7, "head-hash", kSampleLeaseIssuedAt - 1000, 55'000}};
}

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
