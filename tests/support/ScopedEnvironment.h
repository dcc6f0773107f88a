#pragma once

#include <optional>
#include <string>

namespace kovi::testing {

// Sets (or with nullopt unsets) an environment variable for the lifetime of
// the object and restores the previous value afterwards.
class ScopedEnvironment {
 public:
  ScopedEnvironment(std::string name, std::optional<std::string> value);
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
  ~ScopedEnvironment();

 private:
  std::string name_;
  std::optional<std::string> previous_;
};

}  // namespace kovi::testing
