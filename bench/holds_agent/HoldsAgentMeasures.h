#pragma once

#include <sys/types.h>

#include <functional>
#include <vector>

// What the agent benchmarks on X11 and on Wayland measure the same way.
namespace kovi::holds::bench {

// The value at `fraction` (0.5, 0.95) of the sorted values; 0 without any.
double percentile(std::vector<double> values, double fraction);

// CPU seconds a process has run, from /proc/PID/schedstat (nanoseconds on a
// CPU), precise enough for an agent that wakes every 5 seconds.
double cpuSeconds(pid_t pid);

// Resident set size in MB, from /proc/PID/status.
double residentMB(pid_t pid);

// What the closing report of an agent benchmark is made of.
struct ClosingReport {
  const char* desktop = "";  // where it ran, " on sway", or nothing
  // Activation to hidden of the held window, and the plain activations of
  // the baseline, in milliseconds.
  std::vector<double> held;
  std::vector<double> plain;
  pid_t agent = 0;
  pid_t baseline = 0;  // an idle client of the same desktop
  const char* baselineName = "";
  int idleSeconds = 60;
  // Asked after the idle watch, for the memory line.
  std::function<bool()> shieldShown;
};

// Prints the held activations' percentiles and their ratio to the plain
// ones, then, with the shield up, watches the agent and the baseline for
// the idle seconds and prints their shares of a core and their resident
// memory, each with its ratio.
void printClosingReport(const ClosingReport& report);

// Takes "--idle-seconds N" (default 60, at least 1) out of the arguments and
// hands the rest to Google Benchmark; returns N, or exits with a usage
// message on a number that is not one.
int initializeBenchmarks(int argc, char** argv);

}  // namespace kovi::holds::bench
