#pragma once

#include <optional>
#include <string_view>

#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// The agent decodes holds.json every few seconds, and a snapshot may be as
// large as 64 KiB; the strict decoder (which names the key and the reason of
// a failure) is far slower than reading the file. This fast path decodes a
// well-formed version-1 snapshot with simdjson and gives the same value the
// strict decoder would; for anything else — a failure, a duplicated key, a
// number written in an unusual way — it gives nullopt and the caller asks the
// strict decoder, which says why.
std::optional<MacHoldsSnapshot> decodeMacHoldsSnapshotFast(std::string_view bytes);

}  // namespace kovi::holds
