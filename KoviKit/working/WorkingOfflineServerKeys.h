#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// The server public keys offline leases may be signed with, by key id, each
// the DER SubjectPublicKeyInfo of a P-256 key. They come from configuration
// as a JSON object from key id to base64 DER:
//
//   {"lease-2026-11": "MFkwEwYHKoZIzj0CAQYIKoZIzj0DAQcDQgAE…"}
struct WorkingOfflineServerKeys {
  std::map<std::string, std::vector<std::uint8_t>> keys;
  bool operator==(const WorkingOfflineServerKeys&) const = default;
};

// Decodes a key set; a repeated key id is refused (which key would be
// trusted?) and so is a value that is not canonical base64.
Decoded<WorkingOfflineServerKeys> decodeWorkingOfflineServerKeys(std::string_view text);

}  // namespace kovi
