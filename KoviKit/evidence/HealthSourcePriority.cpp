#include "KoviKit/evidence/HealthSourcePriority.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <ranges>

namespace kovi {
namespace {

bool containsIgnoringCase(std::string_view text, std::string_view word) {
  const auto found = std::ranges::search(text, word, [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
  });
  return !found.empty();
}

// Watches sit on the wrist all day; phones are left on desks and count
// fewer of the steps taken, so a watch's samples are the better record.
int deviceClass(std::string_view source) {
  if (containsIgnoringCase(source, "watch")) return 0;
  if (containsIgnoringCase(source, "phone")) return 1;
  return 2;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) text.remove_prefix(1);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.remove_suffix(1);
  return text;
}

}  // namespace

HealthSourcePriority::HealthSourcePriority(std::vector<std::string> preferred) : preferred_(std::move(preferred)) {}

HealthSourcePriority HealthSourcePriority::fromList(std::string_view commaSeparated) {
  std::vector<std::string> preferred;
  for (const auto part : std::views::split(commaSeparated, ',')) {
    const auto name = trimmed(std::string_view(part.begin(), part.end()));
    if (!name.empty()) preferred.emplace_back(name);
  }
  return HealthSourcePriority(std::move(preferred));
}

HealthSourcePriority::Rank HealthSourcePriority::rank(std::string_view source) const {
  const auto listed = std::ranges::find(preferred_, source);
  const std::size_t position =
      listed == preferred_.end() ? std::numeric_limits<std::size_t>::max()
                                 : static_cast<std::size_t>(listed - preferred_.begin());
  return {position, deviceClass(source), std::string(source)};
}

}  // namespace kovi
