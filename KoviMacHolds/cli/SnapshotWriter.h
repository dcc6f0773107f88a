#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// The snapshot as the main app writes holds.json: keys in declared order,
// `Date` values as seconds since 2001-01-01, absent optionals left out.
std::string encodeMacHoldsSnapshot(const MacHoldsSnapshot& snapshot);

// Writes the snapshot atomically to `file`, creating its directories; refuses
// to replace a file that is already there (it belongs to the main app).
std::expected<void, std::string> writeNewMacHoldsSnapshot(const MacHoldsSnapshot& snapshot,
                                                         const std::filesystem::path& file);

}  // namespace kovi::holds
