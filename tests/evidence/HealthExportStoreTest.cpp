#include <gtest/gtest.h>

#include <filesystem>

#include <zip.h>

#include "KoviKit/evidence/HealthExportStore.h"
#include "KoviKit/evidence/HealthExportXmlParser.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using testing::at;

const std::string kExportXml = testing::evidenceData("export.xml");

// The two step samples of kExportXml inside March 2026.
const std::vector<HealthStepSample> kMarchSamples{
    {at("2026-03-02T09:41:07+03:00"), at("2026-03-02T09:51:07+03:00"), 1000, "Ayşe’s Apple Watch"},
    {at("2026-03-02T00:58:00+00:00"), at("2026-03-02T01:08:00+00:00"), 12.5, "Ayşe’s iPhone"},
};
const UnixMillis kMarchFrom = at("2026-03-01T00:00:00Z");
const UnixMillis kMarchTo = at("2026-04-01T00:00:00Z");

// Writes a zip archive holding `entries` (name, contents).
std::filesystem::path writeZip(const std::filesystem::path& path,
                               const std::vector<std::pair<std::string, std::string>>& entries) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  EXPECT_NE(archive, nullptr);
  for (const auto& [name, contents] : entries) {
    zip_source_t* source = zip_source_buffer(archive, contents.data(), contents.size(), 0);
    EXPECT_GE(zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
  }
  EXPECT_EQ(zip_close(archive), 0);
  return path;
}

TEST(HealthExportStoreTest, ReadsStepSamplesFromTheXmlAndTheZipAlike) {
  const testing::TemporaryDirectory directory;
  const std::string xml(kExportXml);
  const std::vector<std::filesystem::path> exports{
      directory.write("export.xml", xml),
      writeZip(directory.path() / "export.zip", {{"apple_health_export/export_cda.xml", "<ClinicalDocument/>"},
                                                 {"apple_health_export/export.xml", xml}}),
      writeZip(directory.path() / "renamed.zip", {{"saglik/export.xml", xml}}),
  };
  for (const auto& path : exports) {
    std::vector<std::uint64_t> progress;
    HealthExportStore store(path, [&](std::uint64_t done, std::uint64_t total) {
      progress.push_back(done);
      EXPECT_EQ(total, xml.size());
    });
    const auto samples = store.stepSamples(kMarchFrom, kMarchTo);
    ASSERT_TRUE(samples.has_value()) << path << ": " << samples.error();
    EXPECT_EQ(*samples, kMarchSamples) << path;
    EXPECT_EQ(progress, std::vector<std::uint64_t>{xml.size()}) << path;
  }
}

TEST(HealthExportStoreTest, KeepsOnlySamplesOverlappingTheInterval) {
  const testing::TemporaryDirectory directory;
  HealthExportStore store(directory.write("export.xml", kExportXml));
  const auto samples = store.stepSamples(at("2026-03-02T01:00:00Z"), at("2026-03-02T01:05:00Z"));
  ASSERT_TRUE(samples.has_value());
  EXPECT_EQ(*samples, std::vector{kMarchSamples[1]});
}

TEST(HealthExportStoreTest, ReadsTheJsonSampleFormat) {
  const testing::TemporaryDirectory directory;
  HealthExportStore store(directory.write(
      "samples.json", R"( [{"start": 1772433667000, "end": 1772434267000, "value": 412, "source": "Apple Watch"}])"));
  const auto samples = store.stepSamples(kMarchFrom, kMarchTo);
  ASSERT_TRUE(samples.has_value()) << samples.error();
  EXPECT_EQ(*samples, (std::vector<HealthStepSample>{{1772433667000, 1772434267000, 412, "Apple Watch"}}));
}

// broken-exports.json: rows of a name, the export's text, whether it is zipped, and what the error says; the
// sample export cut short, plain and zipped, joins them.
TEST(HealthExportStoreTest, SaysWhichFileAndWhyAnExportCannotBeRead) {
  auto rows = nlohmann::json::parse(testing::evidenceData("broken-exports.json"));
  rows.push_back({"truncatedXml", kExportXml.substr(0, 700), false, "export.xml line"});
  rows.push_back({"truncatedInZip", kExportXml.substr(0, kExportXml.size() - 8), true, "unclosed token"});
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0].get<std::string>());
    const testing::TemporaryDirectory directory;
    const auto contents = row[1].get<std::string>();
    const auto path = row[2] ? writeZip(directory.path() / "export.zip", {{"export.xml", contents}})
                             : directory.write("export.xml", contents);
    const auto samples = HealthExportStore(path).stepSamples(kMarchFrom, kMarchTo);
    ASSERT_FALSE(samples.has_value());
    EXPECT_TRUE(samples.error().starts_with(path.string() + ": ")) << samples.error();
    EXPECT_NE(samples.error().find(row[3].get<std::string>()), std::string::npos) << samples.error();
  }
}

TEST(HealthExportStoreTest, AZipWithoutTheXmlOrACutArchiveIsNotRead) {
  const testing::TemporaryDirectory directory;
  const auto withoutXml = writeZip(directory.path() / "a.zip", {{"apple_health_export/electrocardiograms/e.csv", "x"}});
  auto samples = HealthExportStore(withoutXml).stepSamples(kMarchFrom, kMarchTo);
  ASSERT_FALSE(samples.has_value());
  EXPECT_NE(samples.error().find("the archive holds no export.xml"), std::string::npos);

  const auto whole = writeZip(directory.path() / "b.zip", {{"apple_health_export/export.xml", std::string(kExportXml)}});
  const std::string bytes = readFileLimited(whole, 1 << 20).value_or("");
  samples = HealthExportStore(directory.write("cut.zip", bytes.substr(0, bytes.size() / 2)))
                .stepSamples(kMarchFrom, kMarchTo);
  ASSERT_FALSE(samples.has_value());
  EXPECT_NE(samples.error().find("not a readable zip archive"), std::string::npos) << samples.error();

  samples = HealthExportStore(directory.path() / "missing.zip").stepSamples(kMarchFrom, kMarchTo);
  ASSERT_FALSE(samples.has_value());
  EXPECT_NE(samples.error().find("No such file"), std::string::npos) << samples.error();
}

TEST(HealthExportXmlParserTest, ReadsSamplesAcrossAnyChunking) {
  for (const std::size_t chunk : {1u, 7u, 4096u}) {
    std::vector<HealthStepSample> samples;
    HealthExportXmlParser parser([&](HealthStepSample&& sample) { samples.push_back(std::move(sample)); });
    for (std::size_t offset = 0; offset < kExportXml.size(); offset += chunk) {
      ASSERT_TRUE(parser.feed(kExportXml.substr(offset, chunk)).has_value());
    }
    ASSERT_TRUE(parser.finish().has_value());
    EXPECT_EQ(samples.size(), 3u) << chunk;
  }
}

// export-dates.json: rows of a date as Health exports write it and the instant it names, or null when refused.
TEST(HealthExportXmlParserTest, ParsesTheExportDateForm) {
  for (const auto& row : nlohmann::json::parse(testing::evidenceData("export-dates.json"))) {
    EXPECT_EQ(parseHealthExportDate(row[0].get<std::string>()),
              row[1].is_null() ? std::nullopt : std::optional(at(row[1].get<std::string>())))
        << row[0];
  }
}

}  // namespace
}  // namespace kovi
