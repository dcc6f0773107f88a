#include "KoviKit/working/WorkingOfflineServerKeys.h"

#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {

Decoded<WorkingOfflineServerKeys> decodeWorkingOfflineServerKeys(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  const JsonView root(*document);
  auto encoded = root.as<std::map<std::string, std::string>>();
  if (!encoded) return std::unexpected(encoded.error());
  WorkingOfflineServerKeys set;
  for (const auto& [keyID, base64] : *encoded) {
    auto der = base64Decode(base64);
    if (!der || der->empty()) return std::unexpected(DecodeError{keyID, "not base64 DER"});
    set.keys.emplace(keyID, std::move(*der));
  }
  return set;
}

}  // namespace kovi
