// A Health export is a file the user hands us: an archive, an XML document or
// a JSON sample list, of any size and any shape. Whatever the bytes, reading
// them must end with samples or a reason, never a crash; and the buckets made
// from what was read must hold finite, non-negative amounts that never add up
// to more steps than the samples held.
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "KoviKit/evidence/HealthExportStore.h"
#include "KoviKit/evidence/HealthStepStatistics.h"
#include "fuzz/FuzzScratchFile.h"

namespace {

const std::filesystem::path& scratchFile() {
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("fuzz_health_export." + std::to_string(getpid()));
  return file;
}

// Two days from 2026-03-02T00:00:00+03:00, the first with a 25-hour window.
const kovi::HealthEvidenceReadRequest kRequest{
    {{0, 1772398800000, 1772398800000 + 25 * 3600000LL}, {1, 1772398800000 + 25 * 3600000LL, 1772575200000}},
    1772488800000,
    std::nullopt};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (!kovi::fuzz::writeScratchFile(scratchFile(), bytes)) return 0;
  kovi::HealthExportStore store(scratchFile());
  const auto samples = store.stepSamples(kRequest.days.front().start, kRequest.days.back().end);
  if (!samples) {
    if (samples.error().empty()) __builtin_trap();
    return 0;
  }
  double held = 0;
  for (const auto& sample : *samples) held += sample.value;
  double counted = 0;
  for (const auto& day : kovi::bucketStepSamples(*samples, kRequest, kovi::HealthSourcePriority())) {
    for (const auto& bucket : day.buckets) {
      if (!std::isfinite(bucket.amount) || bucket.amount < 0) __builtin_trap();
      counted += bucket.amount;
    }
  }
  if (std::isfinite(held) && counted > held * (1 + 1e-9) + 1e-6) __builtin_trap();
  return 0;
}
