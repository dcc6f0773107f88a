#pragma once

#include <expected>
#include <ostream>
#include <string>

#include "KoviKit/native/NativeAccountError.h"

namespace kovi {

// Lets GoogleTest show "rateLimited(120)" instead of the object's bytes.
inline void PrintTo(const NativeAccountError& error, std::ostream* out) { *out << error.description(); }
// And an answer that is text or an error as the one or the other.
inline void PrintTo(const std::expected<std::string, NativeAccountError>& outcome, std::ostream* out) {
  *out << (outcome ? "accepted " + *outcome : outcome.error().description());
}

}  // namespace kovi
