#pragma once

// The closing line of a benchmark program that measures a subject against a
// baseline in the same run: each benchmark's median time per iteration is
// kept as it is reported, and the ratio is printed against its target.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kovi::bench {

class MedianKeeper : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median") continue;
      wallTimes[run.run_name.function_name] = run.GetAdjustedRealTime();
      cpuTimes[run.run_name.function_name] = run.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }

  // "ratio: subject/baseline = …x wall time, …x CPU time (target <= Nx: met)".
  // The target applies to wall time; CPU time, steadier on a busy machine, is
  // printed beside it. Without a target the ratio is printed for comparison.
  // False when either median is missing.
  bool printRatio(const std::string& subject, const std::string& baseline, std::optional<double> target) const {
    const auto wall = [&](const std::string& name) { return wallTimes.contains(name) ? wallTimes.at(name) : 0.0; };
    const auto cpu = [&](const std::string& name) { return cpuTimes.contains(name) ? cpuTimes.at(name) : 0.0; };
    if (wall(baseline) <= 0 || cpu(baseline) <= 0) return false;
    const double ratio = wall(subject) / wall(baseline);
    std::printf("ratio: %s/%s = %.2fx wall time, %.2fx CPU time", subject.c_str(), baseline.c_str(), ratio,
                cpu(subject) / cpu(baseline));
    if (target) {
      std::printf(" (target <= %gx: %s)\n", *target, ratio <= *target ? "met" : "missed");
    } else {
      std::printf(" (for comparison)\n");
    }
    return true;
  }

  std::map<std::string, double> wallTimes;
  std::map<std::string, double> cpuTimes;
};

}  // namespace kovi::bench
