#pragma once

#include <expected>
#include <ostream>
#include <string>

#include "KoviKit/native/NativeAccountError.h"

namespace kovi {

// Lets GoogleTest show "rateLimited(120)" instead of the object's bytes.
inline void PrintTo(const NativeAccountError& error, std::ostream* out) { *out << error.description(); }
// And an answer that is text or an error as the one or the other.
template <class Answer>
void PrintTo(const std::expected<Answer, NativeAccountError>& outcome, std::ostream* out) {
  if (outcome) {
    *out << "accepted " << *outcome;
  } else {
    *out << outcome.error().description();
  }
}

}  // namespace kovi
