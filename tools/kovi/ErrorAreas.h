#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi::tool {

// The code tables of the service areas `kovi` knows, in the order listed in
// ErrorAreas.cpp.
std::span<const NativeErrorTable* const> errorAreas();

// The table of `area` ("account", "v6/evidence"), or none.
const NativeErrorTable* findErrorArea(std::string_view area);

std::vector<std::string> errorAreaNames();

}  // namespace kovi::tool
