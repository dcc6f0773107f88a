#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace kovi {

// Which device counts when step samples of several sources overlap in time:
// the sources named in `preferred`, in that order, come first; the rest
// follow with watches before phones before anything else, then by name. So a
// phone in the pocket and a watch on the wrist, both counting the same walk,
// are counted once, from the watch.
class HealthSourcePriority {
 public:
  HealthSourcePriority() = default;
  explicit HealthSourcePriority(std::vector<std::string> preferred);

  // "Apple Watch,iPhone" → those two first, in that order. Blank entries are
  // ignored; surrounding spaces are trimmed.
  static HealthSourcePriority fromList(std::string_view commaSeparated);

  // The sort key of `source`: smaller counts first.
  using Rank = std::tuple<std::size_t, int, std::string>;
  Rank rank(std::string_view source) const;

  const std::vector<std::string>& preferred() const { return preferred_; }

 private:
  std::vector<std::string> preferred_;
};

}  // namespace kovi
