#pragma once

#include <expected>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestAssertion.h"
#include "KoviKit/attest/AppAttestError.h"
#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {

// The one way a record that must not be forged is signed: the canonical JSON
// of {"purpose": purpose, "<recordName>": record} (keys in the record's
// declared order, no whitespace, integers bare, minimal escapes) is hashed
// with SHA-256, and that digest is the client-data hash the device key
// asserts over. `record` is the record as its coding encodes it; a record
// holding a non-integral number cannot be signed and is refused.
std::expected<std::string, std::string> purposeSignedText(std::string_view purpose, std::string_view recordName,
                                                          const nlohmann::ordered_json& record);

std::expected<Sha256Digest, std::string> purposeSignedHash(std::string_view purpose, std::string_view recordName,
                                                          const nlohmann::ordered_json& record);

std::expected<AppAttestAssertion, AppAttestError> signRecord(DeviceKeyService& keys, std::string_view keyId,
                                                             std::string_view purpose, std::string_view recordName,
                                                             const nlohmann::ordered_json& record);

}  // namespace kovi
