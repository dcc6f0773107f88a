#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <concepts>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace kovi::tool {

// Numbers on the command line are read one way for every command. An integer
// is plain decimal: an optional "-" and digits, so "0777" is 777 and "08" is
// 8, never octal, and "0x10", "1e3", "+5" and " 5" are refused. A number
// outside the option's range is refused with the range, never clamped.
// Durations are decimal seconds and must be finite: "nan" and "inf" are
// refused.

// The value of `text` as plain decimal, or nothing.
template <std::integral T>
std::optional<T> plainDecimal(std::string_view text) {
  if (text.empty() || text == "-") return std::nullopt;
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Why `text` is not an integer in [minimum, maximum], or an empty string.
std::string integerProblem(std::string_view text, long long minimum, long long maximum);

// An option whose text `take` checks and stores, returning why it is not
// acceptable (an empty string when it is): the one way every number option
// refuses with a message.
CLI::Option* addCheckedOption(CLI::App* command, const std::string& name, const std::string& description,
                              const std::string& typeName, std::function<std::string(const std::string&)> take);

// An integer option read as plain decimal within [minimum, maximum].
template <std::integral T>
CLI::Option* addIntegerOption(CLI::App* command, const std::string& name, T& target, const std::string& description,
                              T minimum = std::numeric_limits<T>::min(), T maximum = std::numeric_limits<T>::max()) {
  return addCheckedOption(command, name, description, "INTEGER", [&target, minimum, maximum](const std::string& text) {
    std::string problem = integerProblem(text, minimum, maximum);
    if (problem.empty()) target = *plainDecimal<T>(text);
    return problem;
  });
}

// A duration option in seconds, finite and within [minimum, maximum].
CLI::Option* addDurationOption(CLI::App* command, const std::string& name, double& target,
                               const std::string& description, double minimum, double maximum);

}  // namespace kovi::tool
