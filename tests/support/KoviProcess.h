#pragma once

#include <string>
#include <vector>

namespace kovi::testing {

struct KoviRun {
  int exitStatus = -1;
  std::string out;
  std::string err;
};

// Runs the built `kovi` with `arguments` in the test's environment and
// waits for it.
KoviRun runKovi(const std::vector<std::string>& arguments);

// Starts the built `kovi` with `arguments` without waiting, its output
// discarded, and returns its process id: for tests that stop it halfway.
int startKovi(const std::vector<std::string>& arguments);

}  // namespace kovi::testing
