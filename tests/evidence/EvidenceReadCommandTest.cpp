#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/KoviProcess.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using testing::runKovi;

constexpr std::string_view kRules =
    R"({"mode":"goal","goalMode":"daily","durationDays":2,"stepTarget":1000,"exitPenaltyBps":0,)"
    R"("payoutRule":"equalSuccessful","rankPayoutsBps":[],"verificationWindowHours":24,"dayBoundary":"calendar",)"
    R"("timezone":"Europe/Istanbul","firstDay":"today"})";
constexpr std::string_view kStart = "2026-03-02T08:00:00+03:00";

// An export of `records` step records on 2 March 2026 (+03:00): the six
// 9-minute slots from 10:00 to 11:00, each recorded by the watch (10 steps)
// and by the phone (25 steps), over and over.
std::string exportXml(int records) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<HealthData locale=\"tr_TR\">\n";
  for (int i = 0; i < records; ++i) {
    const int minute = (i / 2 % 6) * 10;
    char line[320];
    std::snprintf(line, sizeof line,
                  " <Record type=\"HKQuantityTypeIdentifierStepCount\" sourceName=\"%s\" unit=\"count\" "
                  "startDate=\"2026-03-02 10:%02d:00 +0300\" endDate=\"2026-03-02 10:%02d:00 +0300\" value=\"%d\"/>\n",
                  i % 2 == 0 ? "Ayşe’s Apple Watch" : "Ayşe’s iPhone", minute, minute + 9, i % 2 == 0 ? 10 : 25);
    xml += line;
  }
  return xml + "</HealthData>\n";
}

TEST(EvidenceReadCommandTest, ReadsAnExportIntoWhatWalkingEvaluateTakes) {
  const testing::TemporaryDirectory directory;
  const auto rules = directory.write("rules.json", kRules);
  const auto exportFile = directory.write(
      "samples.json",
      R"([{"start": )" + std::to_string(testing::at("2026-03-02T09:40:00+03:00")) + R"(, "end": )" +
          std::to_string(testing::at("2026-03-02T10:00:00+03:00")) + R"(, "value": 1200, "source": "Apple Watch"}])");
  const auto read = runKovi({"evidence", "read", "--export", exportFile.string(), "--rules", rules.string(), "--start",
                             std::string(kStart), "--cutoff", "2026-03-02T09:50:00+03:00"});
  ASSERT_EQ(read.exitStatus, 0) << read.err;
  // Per day its outcome and per bucket its amount and whether it is still open.
  nlohmann::json shape = nlohmann::json::array();
  for (const auto& day : nlohmann::json::parse(read.out)) {
    shape.push_back({day["outcome"], nlohmann::json::array()});
    for (const auto& bucket : day["buckets"]) shape.back()[1].push_back({bucket["amount"], bucket["provisional"]});
  }
  EXPECT_EQ(shape, nlohmann::json::parse(R"([["measured", [[300.0, false], [900.0, true]]], ["noReadableData", []]])"));

  const auto readsFile = directory.write("reads.json", read.out);
  const auto evaluated = runKovi({"walking", "evaluate", rules.string(), "--start", std::string(kStart), "--reads",
                                  readsFile.string(), "--cutoff", "2026-03-02T09:50:00+03:00"});
  ASSERT_EQ(evaluated.exitStatus, 0) << evaluated.err;
  const auto evaluation = nlohmann::json::parse(evaluated.out);
  EXPECT_EQ(evaluation["closedTotal"], 300.0);
  EXPECT_EQ(evaluation["provisionalDays"], nlohmann::json::array({0}));
  EXPECT_EQ(evaluation["refusedDays"].size(), 0u);
}

TEST(EvidenceReadCommandTest, ReportsProgressOnABigExport) {
  const testing::TemporaryDirectory directory;
  const auto rules = directory.write("rules.json", kRules);
  const auto exportFile = directory.write("export.xml", exportXml(30000));
  ASSERT_GT(std::filesystem::file_size(exportFile), 4u * 1024 * 1024);
  const auto read = runKovi({"evidence", "read", "--export", exportFile.string(), "--rules", rules.string(), "--start",
                             std::string(kStart), "--cutoff", "2026-03-03T10:00:00+03:00"});
  ASSERT_EQ(read.exitStatus, 0) << read.err;
  EXPECT_NE(read.err.find("kovi: reading export.xml: 50% ("), std::string::npos) << read.err;
  EXPECT_NE(read.err.find("kovi: reading export.xml: 100% ("), std::string::npos) << read.err;
}

TEST(EvidenceReadCommandTest, AnUnreadableExportPrintsEveryDayAsFailedAndExits1) {
  const testing::TemporaryDirectory directory;
  const auto rules = directory.write("rules.json", kRules);
  const std::string cut = exportXml(3).substr(0, 200);
  const auto exportFile = directory.write("export.xml", cut);
  const auto read = runKovi({"evidence", "read", "--export", exportFile.string(), "--rules", rules.string(), "--start",
                             std::string(kStart)});
  EXPECT_EQ(read.exitStatus, 1);
  EXPECT_NE(read.err.find(exportFile.string() + ": export.xml line 3: "), std::string::npos) << read.err;
  for (const auto& day : nlohmann::json::parse(read.out)) EXPECT_EQ(day["outcome"], "readFailed");

  const auto badRules = runKovi({"evidence", "read", "--export", exportFile.string(), "--rules",
                                 directory.write("r.json", "{}").string(), "--start", std::string(kStart)});
  EXPECT_EQ(badRules.exitStatus, 2);
  EXPECT_NE(badRules.err.find("r.json: mode: missing key"), std::string::npos) << badRules.err;
}

TEST(EvidenceReadCommandTest, ShowsAndResetsAScopesCursor) {
  const testing::TemporaryDirectory directory;
  const std::string scopeJson = testing::evidenceData("scope.json");
  const auto scope = directory.write("scope.json", scopeJson);
  const std::string dataDir = directory.path().string();

  auto shown = runKovi({"evidence", "cursor", "show", "--scope", scope.string(), "--data-dir", dataDir});
  ASSERT_EQ(shown.exitStatus, 0) << shown.err;
  auto json = nlohmann::json::parse(shown.out);
  EXPECT_TRUE(json["record"].is_null());
  const std::string recordFile = json["recordFile"];
  EXPECT_EQ(recordFile, dataDir + "/Kovi/EvidenceReadCursors/v1/" + json["digest"].get<std::string>() + ".json");

  std::filesystem::create_directories(std::filesystem::path(recordFile).parent_path());
  directory.write(std::filesystem::relative(recordFile, dataDir).string(),
                  R"({"version":1,"scope":)" + scopeJson + R"(,"lastItemID":"4"})");
  shown = runKovi({"evidence", "cursor", "show", "--scope", scope.string(), "--data-dir", dataDir});
  ASSERT_EQ(shown.exitStatus, 0) << shown.err;
  EXPECT_EQ(nlohmann::json::parse(shown.out)["record"]["lastItemID"], "4");

  auto reset = runKovi({"evidence", "cursor", "reset", "--scope", scope.string(), "--data-dir", dataDir});
  ASSERT_EQ(reset.exitStatus, 0) << reset.err;
  EXPECT_EQ(nlohmann::json::parse(reset.out)["removed"], true);
  EXPECT_FALSE(std::filesystem::exists(recordFile));
  reset = runKovi({"evidence", "cursor", "reset", "--scope", scope.string(), "--data-dir", dataDir});
  EXPECT_EQ(nlohmann::json::parse(reset.out)["removed"], false);

  directory.write(std::filesystem::relative(recordFile, dataDir).string(), R"({"version":9})");
  shown = runKovi({"evidence", "cursor", "show", "--scope", scope.string(), "--data-dir", dataDir});
  EXPECT_EQ(shown.exitStatus, 1);
  EXPECT_NE(shown.err.find("unsupportedStoredVersion: " + recordFile + ": version 9"), std::string::npos) << shown.err;

  const auto twice = directory.write("twice.json", R"({"ownerID":"a","ownerID":"b"})");
  shown = runKovi({"evidence", "cursor", "show", "--scope", twice.string(), "--data-dir", dataDir});
  EXPECT_EQ(shown.exitStatus, 2);
  EXPECT_NE(shown.err.find("ownerID: duplicate key"), std::string::npos) << shown.err;
}

}  // namespace
}  // namespace kovi
