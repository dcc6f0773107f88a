#pragma once

#include <string>

namespace kovi {

// Passive work seen without input (a meeting, reading): whether it may count,
// and the token that ties consecutive observations of the same activity.
struct WorkingPassiveObservation {
  bool eligible = false;
  std::string continuityToken;

  bool operator==(const WorkingPassiveObservation&) const = default;
};

}  // namespace kovi
