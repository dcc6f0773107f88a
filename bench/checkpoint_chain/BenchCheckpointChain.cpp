// What verifying a session's checkpoint chain costs: the full verification
// of a 10,000-checkpoint chain (ordering, every link, segment spans, each
// checkpoint's canonical text and its SHA-256) against only hashing the same
// canonical texts, prepared beforehand. Both run in the same process, and the
// closing line gives the ratio of their medians (target: at most 2x).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/working/WorkingCheckpointChain.h"
#include "bench/BenchMedianRatio.h"

namespace {

using kovi::WorkingCheckpoint;
using Kind = kovi::WorkingTimeSegment::Kind;

constexpr int kCheckpoints = 10'000;

// A ten-hour-odd session checkpointed every 5 s of a minute-long rhythm:
// active, then idle, then a break, each checkpoint with three segments.
const std::vector<WorkingCheckpoint>& chain() {
  static const std::vector<WorkingCheckpoint> checkpoints = [] {
    std::vector<WorkingCheckpoint> built;
    built.reserve(kCheckpoints);
    std::string previous(kovi::kWorkingCheckpointGenesisHash);
    for (std::int64_t sequence = 0; sequence < kCheckpoints; ++sequence) {
      const std::int64_t start = 1'780'000'000'000 + sequence * 60'000;
      built.push_back({"ses_8f2c1b7e-4d2a-4f57-9a61-0c3e5b7d9f11", "dev_mac_5b1d0a7e", 3, sequence, previous,
                       start + 60'000, 1'200'000 + sequence * 60'000,
                       {{start, start + 40'000, Kind::active},
                        {start + 40'000, start + 50'000, Kind::idle},
                        {start + 50'000, start + 60'000, Kind::break_}},
                       sequence == kCheckpoints - 1});
      previous = kovi::workingCheckpointHash(built.back());
    }
    return built;
  }();
  return checkpoints;
}

void hashCanonicalTexts(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const WorkingCheckpoint& checkpoint : chain()) texts.push_back(kovi::workingCheckpointCanonicalJson(checkpoint));
  for (auto _ : state) {
    for (const std::string& text : texts) benchmark::DoNotOptimize(kovi::sha256Hex(text));
  }
}

void verifyChain(benchmark::State& state) {
  for (auto _ : state) {
    auto report = kovi::verifyWorkingCheckpointChain(chain());
    if (report.status != kovi::WorkingCheckpointChainReport::Status::verified) state.SkipWithError("chain broken");
    benchmark::DoNotOptimize(report);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  chain();  // built once, outside both measurements
  for (auto* registered : {benchmark::RegisterBenchmark("hash_canonical_texts", hashCanonicalTexts),
                           benchmark::RegisterBenchmark("verify_chain", verifyChain)}) {
    registered->Repetitions(7)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  benchmark::Shutdown();
  return keeper.printRatio("verify_chain", "hash_canonical_texts", 2.0) ? 0 : 1;
}
