#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "KoviKit/working/WorkingChainBinding.h"
#include "KoviKit/working/WorkingScheduledArmFiles.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Kind = WorkingScheduledStoreError::Kind;

const std::string kAddress = "0x" + std::string(40, 'a');
const std::string kBinding = kAddress + ":42";

struct BindingCase {
  std::string text;
  bool valid;
};

class ChainBindingTest : public ::testing::TestWithParam<BindingCase> {};

TEST_P(ChainBindingTest, MatchesOnlyALowercaseAddressAndAKoviIdWithoutLeadingZero) {
  EXPECT_EQ(isWorkingChainBinding(GetParam().text), GetParam().valid) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Forms, ChainBindingTest,
                         ::testing::Values(BindingCase{kAddress + ":1", true},
                                           BindingCase{kAddress + ":1" + std::string(30, '0'), true},
                                           BindingCase{kAddress + ":1" + std::string(31, '0'), false},
                                           BindingCase{kAddress + ":0", false}, BindingCase{kAddress + ":01", false},
                                           BindingCase{"0x" + std::string(40, 'A') + ":1", false},
                                           BindingCase{"0x" + std::string(39, 'a') + ":1", false},
                                           BindingCase{kAddress + ":1\n", false},
                                           BindingCase{"../" + kAddress + ":1", false}));

class ScheduledArmFilesTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  WorkingScheduledArmFiles files{directory.path()};
};

TEST_F(ScheduledArmFilesTest, SavesLoadsListsAndRemovesOneFilePerBinding) {
  EXPECT_EQ(files.load(kBinding).value(), std::nullopt);
  EXPECT_EQ(files.list()->size(), 0u) << "no directory yet is an empty store";
  ASSERT_TRUE(files.save(kBinding, {{"closed", false}}).has_value());
  const std::string other = "0x" + std::string(40, 'b') + ":7";
  ASSERT_TRUE(files.save(other, {{"closed", true}}).has_value());

  EXPECT_EQ(files.fileFor(kBinding), directory.path() / "Kovi" / "ScheduledArms" / (kAddress + "-42.json"));
  EXPECT_EQ(files.load(kBinding).value(), nlohmann::json({{"closed", false}}));
  const auto all = files.list();
  ASSERT_TRUE(all.has_value());
  ASSERT_EQ(all->size(), 2u);
  EXPECT_EQ((*all)[0].chainBinding, kBinding);
  EXPECT_EQ((*all)[1].record.value(), nlohmann::json({{"closed", true}}));

  ASSERT_TRUE(files.remove(kBinding).has_value());
  EXPECT_EQ(files.load(kBinding).value(), std::nullopt);
  EXPECT_EQ(files.list()->size(), 1u);
}

TEST_F(ScheduledArmFilesTest, RefusesBindingsThatCouldNameAnotherFile) {
  for (const std::string& binding : {std::string("../../etc/passwd"), kAddress + ":0", std::string()}) {
    EXPECT_EQ(files.save(binding, nlohmann::json::object()).error().kind, Kind::invalidKey);
    EXPECT_EQ(files.load(binding).error().kind, Kind::invalidKey);
  }
  EXPECT_FALSE(std::filesystem::exists(files.directory()));
}

struct CorruptCase {
  const char* name;
  std::string text;
  std::string reason;
};

class ScheduledArmCorruptFileTest : public ScheduledArmFilesTest, public ::testing::WithParamInterface<CorruptCase> {};

TEST_P(ScheduledArmCorruptFileTest, IsReportedKeptAndNeverOverwritten) {
  const auto path = directory.write("Kovi/ScheduledArms/" + kAddress + "-42.json", GetParam().text);
  const auto loaded = files.load(kBinding);
  ASSERT_FALSE(loaded.has_value());
  EXPECT_EQ(loaded.error().kind, Kind::corrupt);
  EXPECT_EQ(loaded.error().message, path.string() + ": " + GetParam().reason);

  EXPECT_EQ(files.save(kBinding, nlohmann::json::object()).error().kind, Kind::corrupt);
  EXPECT_EQ(files.remove(kBinding).error().kind, Kind::corrupt);
  const auto listed = files.list();
  ASSERT_TRUE(listed.has_value());
  ASSERT_EQ(listed->size(), 1u);
  EXPECT_FALSE((*listed)[0].record.has_value());
  std::ifstream in(path);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Files, ScheduledArmCorruptFileTest,
    ::testing::Values(
        CorruptCase{"torn", R"({"version":1,"chainBinding":")", "not valid JSON at line 1, column 30: syntax error while parsing value - invalid string: missing "
                                                             "closing quote; last read: '\"'"},
        CorruptCase{"newerVersion", R"({"version":2,"chainBinding":"x","record":{}})", "version: unsupported version 2"},
        CorruptCase{"anotherBinding", R"({"version":1,"chainBinding":"0x1:1","record":{}})",
                    "chainBinding: names another binding"},
        CorruptCase{"repeatedKey", R"({"version":1,"version":1})", "version: duplicate key"},
        CorruptCase{"recordNotObject", R"({"version":1,"chainBinding":")" + kBinding + R"(","record":[]})",
                    "record: expected an object, found an array"},
        CorruptCase{"unknownKey", R"({"version":1,"extra":true})", "extra: unknown key"}),
    [](const auto& info) { return std::string(info.param.name); });

// A writer killed at any moment leaves the record it replaced or the one it
// was writing, never a torn file: a child rewrites one binding in a loop with
// records large enough that a write takes many system calls, and is killed
// with SIGKILL mid-flight.
TEST_F(ScheduledArmFilesTest, SurvivesAWriterKilledMidWrite) {
  ASSERT_TRUE(files.save(kBinding, {{"round", -1}, {"padding", ""}}).has_value());
  const std::string padding(512 * 1024, 'p');
  for (int attempt = 0; attempt < 5; ++attempt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      WorkingScheduledArmFiles writer(directory.path());
      for (int round = 0;; ++round) {
        if (!writer.save(kBinding, {{"round", round}, {"padding", padding}})) ::_exit(3);
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(40 + 37 * attempt));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped on its own with " << status;

    const auto loaded = files.load(kBinding);
    ASSERT_TRUE(loaded.has_value()) << loaded.error().message;
    ASSERT_TRUE(loaded->has_value());
    EXPECT_TRUE((**loaded)["round"].is_number_integer());
    // Temporary files a killed write leaves behind are not records.
    const auto listed = files.list();
    ASSERT_TRUE(listed.has_value());
    EXPECT_EQ(listed->size(), 1u);
  }
}

}  // namespace
}  // namespace kovi
