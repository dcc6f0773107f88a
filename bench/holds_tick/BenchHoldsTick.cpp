// One tick of the holds agent — read holds.json, decode it, take the current
// calendar, decide (isActive, due, plan) — against reading the same bytes
// alone, for a typical 1 KiB snapshot and for one at the 64 KiB read limit.
// Each case runs repeatedly and the medians are compared at the end.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviMacHolds/MacHoldsDecision.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"
#include "bench/BenchMedianRatio.h"

namespace {

using namespace kovi;
using namespace kovi::holds;

// A snapshot whose exam week contains today, padded through accountScope
// (carried, never interpreted) to exactly `size` bytes.
std::string snapshotText(std::size_t size) {
  const Calendar calendar = Calendar::current();
  const std::string today = calendar.dayString(Date::now());
  const std::string start = calendar.shiftDay(-2, today).value_or(today);
  const std::string end = calendar.shiftDay(3, today).value_or(today);
  const std::string head = R"({"version":1,"stopped":false,"accountScope":")";
  const std::string tail = R"(","syncedAt":785000000.5,"examWeek":{"startDay":")" + start + R"(","endDay":")" + end +
                           R"(","days":6,"firstMinute":540,"secondMinute":840,"blockMinutes":150,"sleepStart":1410,)"
                           R"("sleepEnd":420,"socialMinutes":45,"strictness":"committed"},)"
                           R"("sleep":{"startMinute":1380,"endMinute":420,"strictness":"chill"},)"
                           R"("keepCommunication":true,"allowance":{"day":")" + today +
                           R"(","usedMS":1200000,"since":null}})";
  if (head.size() + tail.size() > size) std::abort();
  return head + std::string(size - head.size() - tail.size(), 'a') + tail;
}

class SnapshotFile {
 public:
  explicit SnapshotFile(std::size_t size)
      : path_(std::filesystem::temp_directory_path() /
              ("kovi-bench-holds-" + std::to_string(::getpid()) + "-" + std::to_string(size) + ".json")) {
    if (!writeFileAtomically(path_, snapshotText(size))) std::abort();
  }
  ~SnapshotFile() { std::filesystem::remove(path_); }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

const SnapshotFile& typicalFile() {
  static const SnapshotFile file(1024);
  return file;
}
const SnapshotFile& largestFile() {
  static const SnapshotFile file(kMacHoldsSnapshotByteLimit);
  return file;
}

void bareRead(benchmark::State& state, const SnapshotFile& file) {
  for (auto _ : state) {
    auto bytes = readFileLimited(file.path(), kMacHoldsSnapshotByteLimit);
    if (!bytes) state.SkipWithError("cannot read the snapshot");
    benchmark::DoNotOptimize(bytes);
  }
}

void agentTick(benchmark::State& state, const SnapshotFile& file) {
  for (auto _ : state) {
    const MacHoldsSnapshotLoad snapshot = loadMacHoldsSnapshot(file.path());
    if (!snapshot) state.SkipWithError("the snapshot does not load");
    const Calendar calendar = Calendar::current();
    MacHoldsAction action = decideMacHoldsAction(snapshot, Date::now(), calendar, false);
    benchmark::DoNotOptimize(action);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (auto* registered : {
           benchmark::RegisterBenchmark("read_1KiB", bareRead, std::cref(typicalFile())),
           benchmark::RegisterBenchmark("tick_1KiB", agentTick, std::cref(typicalFile())),
           benchmark::RegisterBenchmark("read_64KiB", bareRead, std::cref(largestFile())),
           benchmark::RegisterBenchmark("tick_64KiB", agentTick, std::cref(largestFile())),
       }) {
    registered->Repetitions(9)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  benchmark::Shutdown();
  const bool typical = keeper.printRatio("tick_1KiB", "read_1KiB", 4);
  const bool largest = keeper.printRatio("tick_64KiB", "read_64KiB", 10);
  return typical && largest ? 0 : 1;
}
