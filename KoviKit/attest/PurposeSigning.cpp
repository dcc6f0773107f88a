#include "KoviKit/attest/PurposeSigning.h"

#include "KoviKit/foundation/CanonicalJsonWriter.h"

namespace kovi {

std::expected<std::string, std::string> purposeSignedText(std::string_view purpose, std::string_view recordName,
                                                          const nlohmann::ordered_json& record) {
  // The frame's own key: a record under that name would give the text two
  // "purpose" keys, which readers resolve differently.
  if (recordName == "purpose") return std::unexpected(std::string("a record cannot be named \"purpose\""));
  CanonicalJsonWriter writer;
  writer.beginObject().key("purpose").value(purpose).key(recordName);
  if (auto written = writeCanonicalJson(writer, record, recordName); !written) return std::unexpected(written.error());
  writer.endObject();
  return writer.take();
}

std::expected<Sha256Digest, std::string> purposeSignedHash(std::string_view purpose, std::string_view recordName,
                                                          const nlohmann::ordered_json& record) {
  auto text = purposeSignedText(purpose, recordName, record);
  if (!text) return std::unexpected(text.error());
  return sha256(*text);
}

std::expected<AppAttestAssertion, AppAttestError> signRecord(DeviceKeyService& keys, std::string_view keyId,
                                                             std::string_view purpose, std::string_view recordName,
                                                             const nlohmann::ordered_json& record) {
  auto hash = purposeSignedHash(purpose, recordName, record);
  if (!hash) return std::unexpected(AppAttestError{"assertion_failed", "cannot sign: " + hash.error()});
  return keys.generateAssertion(keyId, *hash);
}

}  // namespace kovi
