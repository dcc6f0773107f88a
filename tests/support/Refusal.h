#pragma once

#include <string>

namespace kovi::testing {

// What a refused result says, or "<accepted>" when it was not refused, so one
// comparison checks both that a value was refused and why.
template <class Result>
std::string refusalOf(const Result& result) {
  if (result.has_value()) return "<accepted>";
  return std::string(result.error().message());
}

}  // namespace kovi::testing
