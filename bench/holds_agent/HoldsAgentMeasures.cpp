#include "bench/holds_agent/HoldsAgentMeasures.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <chrono>

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

namespace {

void reportIdleCpu(pid_t agent, pid_t baseline, const char* baselineName, int idleSeconds) {
  const double agentBefore = cpuSeconds(agent), baselineBefore = cpuSeconds(baseline);
  std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
  const double agentPercent = (cpuSeconds(agent) - agentBefore) / idleSeconds * 100;
  const double baselinePercent = (cpuSeconds(baseline) - baselineBefore) / idleSeconds * 100;
  std::printf("idle CPU over %d s with a hold in force: agent %.4f%% of a core (target < 0.1%%), %s %.4f%%\n",
              idleSeconds, agentPercent, baselineName, baselinePercent);
  if (baselinePercent > 0) {
    std::printf("ratio: agent idle CPU / %s = %.1fx\n", baselineName, agentPercent / baselinePercent);
  } else {
    std::printf("ratio: agent idle CPU / %s: it used no measurable CPU (%.1f ms for the agent)\n", baselineName,
                agentPercent * idleSeconds * 10);
  }
}

void reportMemory(pid_t agent, pid_t baseline, const char* baselineName, bool shieldShown) {
  const double agentMB = residentMB(agent), baselineMB = residentMB(baseline);
  std::printf("resident memory with the shield %s: agent %.1f MB (target < 25 MB), %s %.1f MB\n",
              shieldShown ? "shown" : "NOT shown", agentMB, baselineName, baselineMB);
  std::printf("ratio: agent RSS / %s RSS = %.1fx\n", baselineName, agentMB / baselineMB);
}

}  // namespace

void printClosingReport(const ClosingReport& report) {
  const double heldP50 = percentile(report.held, 0.5), heldP95 = percentile(report.held, 0.95);
  const double plainP95 = percentile(report.plain, 0.95);
  std::printf("activation to hidden%s: p50 %.2f ms, p95 %.2f ms over %zu activations (target p95 < 50 ms)\n",
              report.desktop, heldP50, heldP95, report.held.size());
  if (report.plain.empty() || plainP95 <= 0) {
    std::printf("ratio: no plain activation was measured, so there is no baseline\n");
  } else {
    std::printf("ratio: held activation p95 / plain activation p95 = %.1fx (%.2f ms)\n", heldP95 / plainP95, plainP95);
  }
  reportIdleCpu(report.agent, report.baseline, report.baselineName, report.idleSeconds);
  reportMemory(report.agent, report.baseline, report.baselineName, report.shieldShown());
}

int initializeBenchmarks(int argc, char** argv) {
  // Google Benchmark may keep pointers into the arguments it was given.
  static std::vector<char*> rest;
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
  int count = static_cast<int>(rest.size());
  benchmark::Initialize(&count, rest.data());
  return idleSeconds;
}

}  // namespace kovi::holds::bench
