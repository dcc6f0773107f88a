// A year-long walking kovi on one device: 366 days of 96 closed buckets each.
// The subject is everything the app does with a fresh read of the whole kovi —
// sanitise every day, evaluate the member, build every day's observation and
// hash its payload — and the baseline is SHA-256 over the same payload bytes
// alone, so the ratio shows what the walking model adds on top of hashing.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "KoviKit/evidence/V6WalkingObservation.h"
#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"
#include "KoviKit/foundation/Sha256.h"

namespace {

using namespace kovi;

constexpr int kDays = 366;
constexpr int kBucketsPerDay = 96;
constexpr UnixMillis kStart = 1767225600000;  // 2026-01-01T00:00:00Z

struct Year {
  WalkingKoviRules rules;
  std::vector<HealthEvidenceDayWindow> windows;
  std::vector<HealthEvidenceDayRead> reads;
  UnixMillis cutoff = 0;
  std::vector<std::string> payloads;  // the baseline's bytes, built once
};

Year makeYear() {
  Year year;
  year.rules.mode = WalkingKoviRules::Mode::goal;
  year.rules.goalMode = WalkingKoviRules::GoalMode::daily;
  year.rules.durationDays = kDays;
  year.rules.stepTarget = 8000;
  year.rules.verificationWindowHours = 24;
  year.windows = WalkingDayWindowPlanner::plan(year.rules, kStart).value();
  year.cutoff = year.windows.back().end + 1;
  for (const HealthEvidenceDayWindow& window : year.windows) {
    HealthEvidenceDayRead read{window.day, HealthEvidenceReadOutcome::measured, {}};
    for (int cell = 0; cell < kBucketsPerDay; ++cell) {
      const double start = static_cast<double>(window.start + cell * WalkingEvidenceBucketModel::kBucketMillis);
      // Fractional counts and sub-millisecond edges, as the health store reports them.
      read.buckets.push_back({Date::fromUnixMillis(start + 0.25),
                              Date::fromUnixMillis(start + WalkingEvidenceBucketModel::kBucketMillis - 0.25),
                              (window.day * 37 + cell * 53) % 900 + 0.4, false});
    }
    year.reads.push_back(std::move(read));
  }
  for (std::size_t day = 0; day < year.windows.size(); ++day) {
    const auto sanitized = WalkingEvidenceBuckets::sanitize(year.windows[day], year.reads[day].outcome,
                                                            year.reads[day].buckets, year.cutoff);
    year.payloads.push_back(V6WalkingObservation::fromDay(sanitized.value(), year.cutoff).value().payloadText());
  }
  return year;
}

const Year& year() {
  static const Year built = makeYear();
  return built;
}

void payloadHashesOnly(benchmark::State& state) {
  const Year& data = year();
  for (auto _ : state) {
    for (const std::string& payload : data.payloads) benchmark::DoNotOptimize(sha256(payload));
  }
}

void walkingYear(benchmark::State& state) {
  const Year& data = year();
  std::vector<WalkingEvidenceBuckets::SanitizedDay> days;
  days.reserve(data.windows.size());
  for (auto _ : state) {
    days.clear();
    for (std::size_t day = 0; day < data.windows.size(); ++day) {
      auto sanitized = WalkingEvidenceBuckets::sanitize(data.windows[day], data.reads[day].outcome,
                                                        data.reads[day].buckets, data.cutoff);
      if (!sanitized) state.SkipWithError("a day was refused");
      days.push_back(std::move(*sanitized));
    }
    const auto evaluation = WalkingEvidenceEvaluation::evaluate(data.rules, data.windows, days, data.cutoff);
    benchmark::DoNotOptimize(evaluation.verdict);
    for (const auto& day : days) {
      auto observation = V6WalkingObservation::fromDay(day, data.cutoff);
      if (!observation) state.SkipWithError("a day has no observation");
      benchmark::DoNotOptimize(sha256(observation->payloadText()));
    }
  }
}

// Keeps the median real time of each benchmark for the closing ratio.
class MedianReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        medians[run.run_name.function_name] = run.GetAdjustedRealTime();
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> medians;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (auto* registered : {
           benchmark::RegisterBenchmark("payload_sha256_only", payloadHashesOnly),
           benchmark::RegisterBenchmark("walking_year", walkingYear),
       }) {
    registered->Repetitions(9)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
  }
  MedianReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();

  const auto subject = reporter.medians.find("walking_year");
  const auto baseline = reporter.medians.find("payload_sha256_only");
  if (subject == reporter.medians.end() || baseline == reporter.medians.end() || baseline->second <= 0) return 0;
  std::size_t bytes = 0;
  for (const std::string& payload : year().payloads) bytes += payload.size();
  const double ratio = subject->second / baseline->second;
  std::printf("payload bytes: %zu over %d days of %d buckets\n", bytes, kDays, kBucketsPerDay);
  std::printf("walking_year: %.2f ms (target < 20 ms: %s)\n", subject->second,
              subject->second < 20 ? "met" : "missed");
  std::printf("ratio: walking_year/payload_sha256_only = %.2fx (target <= 4x: %s)\n", ratio,
              ratio <= 4 ? "met" : "missed");
  return 0;
}
