#pragma once

#include <concepts>

#include "KoviKit/foundation/Trap.h"

namespace kovi {

// Integer arithmetic on durations, instants and money that traps instead of
// wrapping: a wrapped deadline or balance is worse than a stopped process.

template <std::integral T>
constexpr T checkedAdd(T a, T b) {
  T result{};
  if (__builtin_add_overflow(a, b, &result)) trap("integer overflow in addition");
  return result;
}

template <std::integral T>
constexpr T checkedSub(T a, T b) {
  T result{};
  if (__builtin_sub_overflow(a, b, &result)) trap("integer overflow in subtraction");
  return result;
}

template <std::integral T>
constexpr T checkedMul(T a, T b) {
  T result{};
  if (__builtin_mul_overflow(a, b, &result)) trap("integer overflow in multiplication");
  return result;
}

}  // namespace kovi
