// What accepting a rule set costs: the full decode of a typical rule document
// (parse, strict shape check, typed decoding, every validation check) against
// only parsing the same bytes as JSON. Both run in the same process, one after
// the other, and the closing line gives the ratio of their medians (target:
// at most 3x).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingRules.h"
#include "bench/BenchMedianRatio.h"

namespace {

// The race rule set of the tests: fourteen days, three ranks, every record
// filled in (about 3 KiB).
const std::string& typicalRules() {
  static const std::string text = [] {
    auto contents = kovi::readFileLimited(KOVI_WORKING_BENCH_RULES, 1 << 20);
    if (!contents) std::abort();
    return std::move(*contents);
  }();
  return text;
}

void bareParse(benchmark::State& state) {
  for (auto _ : state) {
    auto document = kovi::parseJson(typicalRules());
    if (!document) state.SkipWithError("the rule document is not JSON");
    benchmark::DoNotOptimize(document);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * typicalRules().size()));
}

void decodeAndValidate(benchmark::State& state) {
  for (auto _ : state) {
    auto rules = kovi::decodeWorkingRules(typicalRules());
    if (!rules) state.SkipWithError("the rule document does not decode");
    benchmark::DoNotOptimize(rules);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * typicalRules().size()));
}


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  // Repeated runs on a shared machine: the medians resist a burst of load.
  for (auto* registered : {benchmark::RegisterBenchmark("parse_json", bareParse),
                           benchmark::RegisterBenchmark("decode_shape_validate", decodeAndValidate)}) {
    registered->Repetitions(7)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  benchmark::Shutdown();
  return keeper.printRatio("decode_shape_validate", "parse_json", 3) ? 0 : 1;
}
