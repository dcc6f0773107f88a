#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Parses JSON text and refuses an object that names one key twice. A plain
// parse keeps the last of two equal keys, so two readers of one file could
// disagree on what it says; documents whose content names a file, a hash or
// a signature must mean one thing. A syntax error names its byte offset.
Decoded<nlohmann::json> parseJsonWithUniqueKeys(std::string_view text);

// `parseJsonWithUniqueKeys` and the decoding of T in one step.
template <class T>
Decoded<T> decodeJsonTextWithUniqueKeys(std::string_view text) {
  auto document = parseJsonWithUniqueKeys(text);
  if (!document) return std::unexpected(document.error());
  return JsonView(*document).as<T>();
}

}  // namespace kovi
