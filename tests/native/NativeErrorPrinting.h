#pragma once

#include <ostream>

#include "KoviKit/native/NativeAccountError.h"

namespace kovi {

// Lets GoogleTest show "rateLimited(120)" instead of the object's bytes.
inline void PrintTo(const NativeAccountError& error, std::ostream* out) { *out << error.description(); }

}  // namespace kovi
