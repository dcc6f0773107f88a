#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/working/WorkingChainBinding.h"
#include "KoviKit/working/WorkingScheduledArmStore.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Kind = WorkingScheduledStoreError::Kind;

const std::string kAddress = "0x" + std::string(40, 'a');
const std::string kBinding = kAddress + ":42";

// The room and session of the wire samples, the room bound to `address:koviId`.
WorkingScheduledArmRecord armRecord(const std::string& address = kAddress, const std::string& koviId = "42") {
  WorkingScheduledArmRecord record{
      decodeJsonText<WorkingRemoteRoom>(testing::workingDataFile("wire/room.json")).value(),
      decodeJsonText<WorkingRemoteSession>(testing::workingDataFile("wire/session.json")).value(), false};
  record.room.chain = WorkingRemoteRoom::ChainBinding{address, koviId};
  return record;
}

// An arm file's text for `record`, with `edit` applied to its JSON.
std::string armFileText(const std::function<void(nlohmann::ordered_json&)>& edit) {
  auto document = encodeRecord(WorkingScheduledArmFile{1, kBinding, armRecord()});
  edit(document);
  return document.dump();
}

TEST(WorkingChainBindingTest, MatchesOnlyALowercaseAddressAndAKoviIdWithoutLeadingZero) {
  const std::pair<std::string, bool> cases[] = {
      {kAddress + ":1", true}, {kAddress + ":1" + std::string(30, '0'), true},
      {kAddress + ":1" + std::string(31, '0'), false}, {kAddress + ":0", false}, {kAddress + ":01", false},
      {"0x" + std::string(40, 'A') + ":1", false}, {"0x" + std::string(39, 'a') + ":1", false},
      {kAddress + ":1\n", false}, {"../" + kAddress + ":1", false}};
  for (const auto& [text, valid] : cases) EXPECT_EQ(isWorkingChainBinding(text), valid) << text;
}

class ScheduledArmStoreTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  WorkingScheduledArmStore files{directory.path()};
};

TEST_F(ScheduledArmStoreTest, SavesLoadsListsAndRemovesOneFilePerBinding) {
  EXPECT_EQ(files.load(kBinding).value(), std::nullopt);
  EXPECT_EQ(files.list()->size(), 0u) << "no directory yet is an empty store";
  const WorkingScheduledArmRecord open = armRecord();
  WorkingScheduledArmRecord closed = armRecord("0x" + std::string(40, 'b'), "7");
  closed.closed = true;
  ASSERT_TRUE(files.save(open).has_value());
  ASSERT_TRUE(files.save(closed).has_value());

  EXPECT_EQ(files.fileFor(kBinding), directory.path() / "Kovi" / "ScheduledArms" / (kAddress + "-42.json"));
  EXPECT_EQ(files.load(kBinding).value(), open);
  const auto all = files.list();
  ASSERT_TRUE(all.has_value());
  ASSERT_EQ(all->size(), 2u);
  EXPECT_EQ((*all)[0].chainBinding, kBinding);
  EXPECT_EQ((*all)[1].record.value(), closed);

  ASSERT_TRUE(files.remove(kBinding).has_value());
  EXPECT_EQ(files.load(kBinding).value(), std::nullopt);
  EXPECT_EQ(files.list()->size(), 1u);
}

TEST_F(ScheduledArmStoreTest, RefusesBindingsThatCouldNameAnotherFile) {
  for (const std::string& binding : {std::string("../../etc/passwd"), kAddress + ":0", std::string()}) {
    EXPECT_EQ(files.load(binding).error().kind, Kind::invalidKey);
  }
  WorkingScheduledArmRecord unbound = armRecord();
  unbound.room.chain.reset();
  EXPECT_EQ(files.save(unbound).error().kind, Kind::invalidKey);
  EXPECT_EQ(files.save(armRecord("../../etc/passwd", "1")).error().kind, Kind::invalidKey);
  EXPECT_FALSE(std::filesystem::exists(files.directory()));
}

TEST_F(ScheduledArmStoreTest, ACorruptFileIsReportedKeptAndNeverOverwritten) {
  // Each row of corrupt-arm-files.json is a file's text, or a patch to a
  // valid arm file.
  const auto cases = nlohmann::ordered_json::parse(testing::workingDataFile("corrupt-arm-files.json"));
  ASSERT_EQ(cases.size(), 9U);
  for (const auto& row : cases) {
    const std::string reason = row.at("reason");
    const std::string text = row.contains("text") ? row.at("text").get<std::string>()
                                                  : armFileText([&](auto& file) { file = file.patch(row.at("patch")); });
    SCOPED_TRACE(reason);
    const auto path = directory.write("Kovi/ScheduledArms/" + kAddress + "-42.json", text);
    const auto loaded = files.load(kBinding);
    ASSERT_FALSE(loaded.has_value());
    EXPECT_EQ(loaded.error(), (WorkingScheduledStoreError{Kind::corrupt, path.string() + ": " + reason}));
    EXPECT_EQ(files.save(armRecord()).error().kind, Kind::corrupt);
    EXPECT_EQ(files.remove(kBinding).error().kind, Kind::corrupt);
    const auto listed = files.list();
    ASSERT_TRUE(listed.has_value());
    ASSERT_EQ(listed->size(), 1u);
    EXPECT_FALSE((*listed)[0].record.has_value());
    EXPECT_EQ(readFileLimited(path, 1 << 20), text) << "the file is kept as it was";
  }
}

// A writer killed at any moment leaves the record it replaced or the one it
// was writing, never a torn file: a child rewrites one binding in a loop with
// records large enough that a write takes many system calls, and is killed
// with SIGKILL mid-flight.
TEST_F(ScheduledArmStoreTest, SurvivesAWriterKilledMidWrite) {
  ASSERT_TRUE(files.save(armRecord()).has_value());
  WorkingScheduledArmRecord large = armRecord();
  large.room.title = std::string(512 * 1024, 'p');
  for (int attempt = 0; attempt < 5; ++attempt) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      WorkingScheduledArmStore writer(directory.path());
      for (int round = 0;; ++round) {
        large.session.sequence = round;
        if (!writer.save(large)) ::_exit(3);
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
    EXPECT_EQ((*loaded)->session.id, large.session.id);
    // Temporary files a killed write leaves behind are not records.
    const auto listed = files.list();
    ASSERT_TRUE(listed.has_value());
    EXPECT_EQ(listed->size(), 1u);
  }
}

}  // namespace
}  // namespace kovi
