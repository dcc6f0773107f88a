// Reading a phone's Health export of about 100 MB for a 30-day kovi. The
// export is written by this program into a temporary folder (never kept):
// two years of step samples from a watch and a phone among heart-rate,
// distance and energy records, some with metadata children, as real exports
// have them. The subject is the whole read — stream the XML, pick the step
// samples of the kovi's days and sum them into 15-minute buckets — and the
// baseline is expat parsing the same file with empty handlers, so the ratio
// shows what the reader adds to the XML parse itself. The zipped export is
// read too. The closing lines give the ratio and the peak resident memory.
#include <benchmark/benchmark.h>
#include <expat.h>
#include <sys/resource.h>
#include <zip.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthExportStore.h"
#include "KoviKit/evidence/HealthStepStatistics.h"
#include "bench/BenchMedianRatio.h"

namespace {

using namespace kovi;

constexpr std::uint64_t kTargetBytes = 100ull * 1000 * 1000;
constexpr UnixMillis kFirstSample = 1709251200000;  // 2024-03-01T00:00:00Z
constexpr UnixMillis kMinute = 60'000;
constexpr UnixMillis kDay = 24 * 60 * kMinute;

struct Export {
  std::filesystem::path directory;
  std::filesystem::path xml;
  std::filesystem::path zip;
  HealthEvidenceReadRequest request;  // 30 days in the second year
};

std::string exportDate(UnixMillis instant) {
  // Written at +0300, as a phone in Istanbul writes them.
  const std::time_t seconds = static_cast<std::time_t>(instant / 1000 + 3 * 3600);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S +0300", &parts);
  return text;
}

void writeExportXml(const std::filesystem::path& path) {
  std::ofstream out(path, std::ios::binary);
  std::string chunk =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE HealthData [\n<!ELEMENT HealthData "
      "(ExportDate,Me,(Record|Workout)*)>\n<!ATTLIST HealthData locale CDATA #REQUIRED>\n]>\n"
      "<HealthData locale=\"tr_TR\">\n <ExportDate value=\"2026-03-03 08:00:00 +0300\"/>\n";
  static constexpr const char* kOthers[] = {"HKQuantityTypeIdentifierHeartRate",
                                            "HKQuantityTypeIdentifierDistanceWalkingRunning",
                                            "HKQuantityTypeIdentifierActiveEnergyBurned"};
  std::uint64_t written = 0;
  UnixMillis instant = kFirstSample;
  for (std::uint64_t index = 0; written + chunk.size() < kTargetBytes; ++index) {
    const bool step = index % 5 < 2;
    const bool watch = index % 2 == 0;
    const UnixMillis length = (step ? 7 : 1) * kMinute;
    const std::string start = exportDate(instant), end = exportDate(instant + length);
    chunk += " <Record type=\"";
    chunk += step ? "HKQuantityTypeIdentifierStepCount" : kOthers[index % 3];
    chunk += "\" sourceName=\"";
    chunk += watch ? "Ayşe’s Apple Watch" : "Ayşe’s iPhone";
    chunk += "\" sourceVersion=\"10.3\" unit=\"count\" creationDate=\"" + end + "\" startDate=\"" + start +
             "\" endDate=\"" + end + "\" value=\"" + std::to_string(index % 700 + 3) + "\"";
    if (index % 7 == 0) {
      chunk += ">\n  <MetadataEntry key=\"HKWasUserEntered\" value=\"0\"/>\n </Record>\n";
    } else {
      chunk += "/>\n";
    }
    if (index % 2 == 1) instant += 6 * kMinute;
    if (chunk.size() > (1 << 20)) {
      out << chunk;
      written += chunk.size();
      chunk.clear();
    }
  }
  out << chunk << "</HealthData>\n";
}

void writeExportZip(const std::filesystem::path& xml, const std::filesystem::path& path) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  zip_source_t* source = zip_source_file(archive, xml.c_str(), 0, 0);
  zip_file_add(archive, "apple_health_export/export.xml", source, ZIP_FL_ENC_UTF_8);
  zip_set_file_compression(archive, 0, ZIP_CM_DEFLATE, 1);
  zip_close(archive);
}

Export makeExport() {
  Export made;
  char pattern[] = "/tmp/kovi-health-export-XXXXXX";
  made.directory = mkdtemp(pattern);
  made.xml = made.directory / "export.xml";
  made.zip = made.directory / "export.zip";
  writeExportXml(made.xml);
  writeExportZip(made.xml, made.zip);
  const UnixMillis kovi = kFirstSample + 400 * kDay;
  for (int day = 0; day < 30; ++day) made.request.days.push_back({day, kovi + day * kDay, kovi + (day + 1) * kDay});
  made.request.observationCutoff = kovi + 30 * kDay;
  return made;
}

Export& theExport() {
  static Export made = makeExport();
  return made;
}

void bareExpatParse(benchmark::State& state) {
  const auto& path = theExport().xml;
  std::vector<char> buffer(256 * 1024);
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreate("UTF-8");
    XML_SetElementHandler(parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    std::ifstream in(path, std::ios::binary);
    while (in) {
      in.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
      if (XML_Parse(parser, buffer.data(), static_cast<int>(in.gcount()), XML_FALSE) != XML_STATUS_OK) {
        state.SkipWithError("the generated export does not parse");
      }
    }
    XML_Parse(parser, nullptr, 0, XML_TRUE);
    XML_ParserFree(parser);
  }
}

void readExport(benchmark::State& state, const std::filesystem::path& path) {
  const auto& request = theExport().request;
  for (auto _ : state) {
    HealthExportStore store(path);
    const auto reading = readHealthEvidence(store, request, HealthSourcePriority());
    if (reading.failure) state.SkipWithError(reading.failure->c_str());
    benchmark::DoNotOptimize(reading.result.days.data());
  }
}

void readExportXml(benchmark::State& state) { readExport(state, theExport().xml); }
void readExportZip(benchmark::State& state) { readExport(state, theExport().zip); }

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const Export& made = theExport();
  std::printf("export.xml: %.1f MB, export.zip: %.1f MB\n", std::filesystem::file_size(made.xml) / 1e6,
              std::filesystem::file_size(made.zip) / 1e6);
  for (auto* registered : {
           benchmark::RegisterBenchmark("bare_expat_parse", bareExpatParse),
           benchmark::RegisterBenchmark("read_export_xml", readExportXml),
           benchmark::RegisterBenchmark("read_export_zip", readExportZip),
       }) {
    registered->Iterations(1)->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  benchmark::Shutdown();
  std::filesystem::remove_all(made.directory);

  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const double peakMB = static_cast<double>(usage.ru_maxrss) / 1024.0;
  keeper.printRatio("read_export_xml", "bare_expat_parse", 1.5);
  std::printf("peak resident memory: %.1f MB (target < 40 MB: %s)\n", peakMB, peakMB < 40 ? "met" : "missed");
  return 0;
}
