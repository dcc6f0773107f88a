#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string_view>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// How deep a signed or hashed document may nest; real ones need a handful of
// levels, and the bound keeps hostile input from costing unbounded work.
inline constexpr std::size_t kSignedJsonMaximumDepth = 64;

// Parses a document whose bytes are hashed or signed (leases, key sets).
// A plain parser keeps the last of two equal keys, so a verifier and another
// reader could each see a different value under one signature; here a key
// repeated in any object is refused, with the path of that object and the key
// ("lease: duplicate key \"epoch\""), as is nesting deeper than
// `kSignedJsonMaximumDepth` and any syntax error (with its byte offset).
Decoded<nlohmann::json> parseSignedJsonDocument(std::string_view text);

}  // namespace kovi
