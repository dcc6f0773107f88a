#pragma once

#include <string_view>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Parses JSON text like `parseJson`, and refuses a document in which any
// object names a key twice ("segments[2].end: duplicate key"). For
// documents that are hashed or signed: a parser keeps only one of the two
// values, so two readers could see different documents behind one hash.
Decoded<nlohmann::json> parseJsonWithUniqueKeys(std::string_view text);

// Parses with unique keys and decodes the document as T in one step.
template <class T>
Decoded<T> decodeJsonTextWithUniqueKeys(std::string_view text) {
  auto document = parseJsonWithUniqueKeys(text);
  if (!document) return std::unexpected(document.error());
  return JsonView(*document).as<T>();
}

}  // namespace kovi
