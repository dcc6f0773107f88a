#pragma once

#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "KoviKit/working/WorkingOfflineLease.h"

namespace kovi::testing {

// A lease as the service would send it, issued at `kSampleLeaseIssuedAt` and
// good for two minutes, and the binding it was issued for.
inline constexpr UnixMillis kSampleLeaseIssuedAt = 1'800'000'000'000;
nlohmann::ordered_json sampleOfflineLease();
WorkingOfflineBinding sampleOfflineBinding();

// Stands in for the service's lease signer: a fresh P-256 key made with
// OpenSSL, signing lease envelopes the way the service does, from its own
// text of the signed payload.
class OfflineLeaseServer {
 public:
  OfflineLeaseServer();
  ~OfflineLeaseServer();
  OfflineLeaseServer(const OfflineLeaseServer&) = delete;
  OfflineLeaseServer& operator=(const OfflineLeaseServer&) = delete;

  // Base64 of the DER SubjectPublicKeyInfo, as a key set carries it.
  std::string publicKeyBase64() const;
  // {"lease": lease, "signature": base64 DER ECDSA over
  // {"purpose":"kovi-working-offline-lease-v1","lease":lease}}, compact.
  std::string envelope(const nlohmann::ordered_json& lease) const;
  // The base64 signature alone.
  std::string sign(const nlohmann::ordered_json& lease) const;

 private:
  struct Key;
  std::unique_ptr<Key> key_;
};

}  // namespace kovi::testing
