#pragma once

#include <filesystem>

namespace kovi {

// The per-user directory where Kovi keeps its files: Application Support on
// macOS; on Linux $XDG_DATA_HOME, or ~/.local/share when that is unset or not
// absolute (the XDG base-directory rule).
std::filesystem::path applicationSupportDirectory();

}  // namespace kovi
