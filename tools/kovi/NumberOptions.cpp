#include "tools/kovi/NumberOptions.h"

#include <cmath>
#include <sstream>

namespace kovi::tool {
namespace {

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string shortest(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

std::optional<double> decimalSeconds(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Why `text` is not a finite duration in [minimum, maximum] seconds, or an
// empty string.
std::string durationProblem(std::string_view text, double minimum, double maximum) {
  const auto value = decimalSeconds(text);
  if (!value) return quoted(text) + " is not a number of seconds";
  if (!std::isfinite(*value) || *value < minimum || *value > maximum) {
    return quoted(text) + " is out of range (" + shortest(minimum) + " to " + shortest(maximum) + " seconds)";
  }
  return {};
}

}  // namespace

std::string integerProblem(std::string_view text, long long minimum, long long maximum) {
  const auto value = plainDecimal<long long>(text);
  if (value && *value >= minimum && *value <= maximum) return {};
  const std::string range = std::to_string(minimum) + " to " + std::to_string(maximum);
  // All digits but beyond any 64-bit integer: out of range, not malformed.
  const bool digits = !text.empty() && text.find_first_not_of("-0123456789") == std::string_view::npos &&
                      text.find('-', 1) == std::string_view::npos && text != "-";
  if (value || digits) return quoted(text) + " is out of range (" + range + ")";
  return quoted(text) + " is not a plain decimal integer (" + range + ")";
}

CLI::Option* addCheckedOption(CLI::App* command, const std::string& name, const std::string& description,
                              const std::string& typeName, std::function<std::string(const std::string&)> take) {
  return command
      ->add_option_function<std::string>(
          name,
          [take = std::move(take)](const std::string& text) {
            if (auto problem = take(text); !problem.empty()) throw CLI::ValidationError(problem);
          },
          description)
      ->type_name(typeName);
}

CLI::Option* addDurationOption(CLI::App* command, const std::string& name, double& target,
                               const std::string& description, double minimum, double maximum) {
  return addCheckedOption(command, name, description, "SECONDS", [&target, minimum, maximum](const std::string& text) {
    std::string problem = durationProblem(text, minimum, maximum);
    if (problem.empty()) target = *decimalSeconds(text);
    return problem;
  });
}

}  // namespace kovi::tool
