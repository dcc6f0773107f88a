#pragma once

#include <sys/types.h>

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

// Watches the agent and a baseline process for `idleSeconds` and prints the
// agent's share of a core, the baseline's and their ratio.
void reportIdleCpu(pid_t agent, pid_t baseline, const char* baselineName, int idleSeconds);

// Prints the agent's resident memory, the baseline's and their ratio.
void reportMemory(pid_t agent, pid_t baseline, const char* baselineName, bool shieldShown);

// Takes "--idle-seconds N" (default 60, at least 1) out of the arguments,
// leaving the rest for Google Benchmark; exits with a usage message on a
// number that is not one.
int takeIdleSeconds(int argc, char** argv, std::vector<char*>& rest);

}  // namespace kovi::holds::bench
