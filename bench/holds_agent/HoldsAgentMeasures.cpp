#include "bench/holds_agent/HoldsAgentMeasures.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

namespace kovi::holds::bench {

double percentile(std::vector<double> values, double fraction) {
  if (values.empty()) return 0;
  std::ranges::sort(values);
  const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1) + 0.5);
  return values[index];
}

double cpuSeconds(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/schedstat");
  unsigned long long nanoseconds = 0;
  in >> nanoseconds;
  return static_cast<double>(nanoseconds) / 1e9;
}

double residentMB(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  std::string line;
  while (std::getline(in, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stod(line.substr(6)) / 1024;
  }
  return 0;
}

int takeIdleSeconds(int argc, char** argv, std::vector<char*>& rest) {
  int idleSeconds = 60;
  for (int index = 0; index < argc; ++index) {
    if (std::strcmp(argv[index], "--idle-seconds") == 0 && index + 1 < argc) {
      const std::string_view text(argv[++index]);
      const auto parsed = std::from_chars(text.data(), text.data() + text.size(), idleSeconds);
      if (parsed.ec != std::errc{} || parsed.ptr != text.data() + text.size() || idleSeconds < 1) {
        std::fprintf(stderr, "%s: --idle-seconds takes a whole number of seconds, 1 or more\n", argv[0]);
        std::exit(2);
      }
    } else {
      rest.push_back(argv[index]);
    }
  }
  return idleSeconds;
}

}  // namespace kovi::holds::bench
