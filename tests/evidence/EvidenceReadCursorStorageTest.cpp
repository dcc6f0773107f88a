#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

#include "KoviKit/evidence/EvidenceReadCursorAppStorage.h"
#include "KoviKit/evidence/EvidenceReadCursorFileStorage.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/FileKeyValueStore.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Storage = EvidenceReadCursorStorage;

const EvidenceReadScope kScope{EvidenceReadScopeKind::walking, "acct-ayse", "kovi-42", "binding-7", 3, "device-1"};

// What a load found, failing the test when it failed.
template <class T>
std::optional<T> loaded(const std::expected<std::optional<T>, EvidenceReadFailure>& result) {
  EXPECT_TRUE(result.has_value()) << result.error().detail;
  return result.value_or(std::nullopt);
}

// Why a load failed; no reason at all when it did not.
template <class T>
EvidenceReadFailure failureOf(const std::expected<T, EvidenceReadFailure>& result) {
  return result ? EvidenceReadFailure{} : result.error();
}

Storage::AcceptedRecord acceptedDays(std::map<int, std::int64_t> days) {
  return {Storage::kVersion, kScope.ownerID, kScope.subjectID, kScope.bindingID, std::move(days)};
}

// Both storages behind the interface, and a way to plant a raw stored
// document for the scope, as a damaged disk or a newer build would leave it.
struct StorageUnderTest {
  std::unique_ptr<testing::TemporaryDirectory> directory = std::make_unique<testing::TemporaryDirectory>();
  std::unique_ptr<FileKeyValueStore> defaults;
  std::unique_ptr<Storage> storage;
  std::function<void(const std::string& json)> plantRecord;
  std::function<void(const std::string& json)> plantAccepted;
};

StorageUnderTest fileStorage() {
  StorageUnderTest test;
  auto storage = std::make_unique<EvidenceReadCursorFileStorage>(test.directory->path());
  const auto* files = storage.get();
  test.plantRecord = [files](const std::string& json) {
    ASSERT_TRUE(writeFileAtomically(files->recordFile(kScope), json).has_value());
  };
  test.plantAccepted = [files](const std::string& json) {
    ASSERT_TRUE(writeFileAtomically(files->acceptedFile(kScope), json).has_value());
  };
  test.storage = std::move(storage);
  return test;
}

StorageUnderTest appStorage() {
  StorageUnderTest test;
  test.defaults = std::make_unique<FileKeyValueStore>("group.app.kovi.shared", test.directory->path());
  auto* defaults = test.defaults.get();
  test.storage = std::make_unique<EvidenceReadCursorAppStorage>(*defaults);
  test.plantRecord = [defaults](const std::string& json) {
    ASSERT_TRUE(defaults->setValue(EvidenceReadCursorAppStorage::recordKey(kScope), nlohmann::json::parse(json)));
  };
  test.plantAccepted = [defaults](const std::string& json) {
    ASSERT_TRUE(defaults->setValue(EvidenceReadCursorAppStorage::acceptedKey(kScope), nlohmann::json::parse(json)));
  };
  return test;
}

class EvidenceReadCursorStorageTest : public ::testing::TestWithParam<StorageUnderTest (*)()> {};

TEST_P(EvidenceReadCursorStorageTest, StoresLoadsAndRemovesBothRecords) {
  const auto test = GetParam()();
  Storage& storage = *test.storage;
  EXPECT_EQ(loaded(storage.loadRecord(kScope)), std::optional<Storage::Record>());
  EXPECT_EQ(loaded(storage.loadAccepted(kScope)), std::optional<Storage::AcceptedRecord>());

  const Storage::Record record{Storage::kVersion, kScope, "day-4"};
  ASSERT_TRUE(storage.saveRecord(record).has_value());
  ASSERT_TRUE(storage.saveAccepted(kScope, acceptedDays({{0, 10450}, {3, 0}})).has_value());
  EXPECT_EQ(loaded(storage.loadRecord(kScope)), std::optional(record));
  EXPECT_EQ(loaded(storage.loadAccepted(kScope)), std::optional(acceptedDays({{0, 10450}, {3, 0}})));

  // Another writer epoch is another scope: it starts afresh.
  EvidenceReadScope nextEpoch = kScope;
  nextEpoch.writerEpoch = 4;
  EXPECT_EQ(loaded(storage.loadRecord(nextEpoch)), std::optional<Storage::Record>());

  ASSERT_TRUE(storage.remove(kScope).has_value());
  EXPECT_EQ(loaded(storage.loadRecord(kScope)), std::optional<Storage::Record>());
  EXPECT_EQ(loaded(storage.loadAccepted(kScope)), std::optional<Storage::AcceptedRecord>());
  EXPECT_TRUE(storage.remove(kScope).has_value());
}

TEST_P(EvidenceReadCursorStorageTest, RefusesToStoreWhatItCouldNotLoad) {
  const auto test = GetParam()();
  Storage& storage = *test.storage;
  EvidenceReadScope noOwner = kScope;
  noOwner.ownerID.clear();
  const auto firstDays = [](int count) {
    std::map<int, std::int64_t> days;
    for (int day = 0; day < count; ++day) days[day] = 1;
    return days;
  };
  const std::vector<std::pair<std::expected<void, EvidenceReadFailure>, EvidenceReadError>> refusals{
      {storage.saveRecord({Storage::kVersion, noOwner, "day-1"}), EvidenceReadError::invalidScope},
      {storage.saveRecord({Storage::kVersion, kScope, ""}), EvidenceReadError::invalidStoredCursor},
      {storage.saveAccepted(kScope, acceptedDays({})), EvidenceReadError::invalidStoredCursor},
      {storage.saveAccepted(kScope, acceptedDays({{0, -1}})), EvidenceReadError::invalidStoredCursor},
      {storage.saveAccepted(noOwner, acceptedDays({{0, 1}})), EvidenceReadError::invalidScope},
      {storage.saveAccepted(kScope, acceptedDays(firstDays(366))), EvidenceReadError::invalidStoredCursor},
  };
  for (const auto& [result, expected] : refusals) {
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error().error, expected) << result.error().detail;
  }
  EXPECT_TRUE(storage.saveAccepted(kScope, acceptedDays(firstDays(365))).has_value());
}

// kScope as stored.
const std::string kScopeJson = testing::evidenceData("scope.json");

// stored-cursors.json: rows of a name, whether the document is the accepted-days record rather than the cursor
// record, the document, and the error and reason its load fails with; a record over the size limit joins them.
TEST_P(EvidenceReadCursorStorageTest, TellsANewerVersionFromACorruptOrOversizedRecord) {
  auto rows = nlohmann::ordered_json::parse(testing::evidenceData("stored-cursors.json"));
  rows.push_back({"tooLarge", false, {{"version", 1}, {"lastItemID", std::string(70000, 'x')}}, "storageTooLarge",
                  "larger than 65536 bytes"});
  for (const auto& row : rows) {
    SCOPED_TRACE(row[0].get<std::string>());
    const auto test = GetParam()();
    (row[1] ? test.plantAccepted : test.plantRecord)(row[2].dump());
    const auto failure =
        row[1] ? failureOf(test.storage->loadAccepted(kScope)) : failureOf(test.storage->loadRecord(kScope));
    EXPECT_EQ(enumName(failure.error), row[3].get<std::string>()) << failure.detail;
    EXPECT_NE(failure.detail.find(row[4].get<std::string>()), std::string::npos) << failure.detail;
  }
}

INSTANTIATE_TEST_SUITE_P(Storages, EvidenceReadCursorStorageTest, ::testing::Values(&fileStorage, &appStorage),
                         [](const auto& info) { return info.index == 0 ? "files" : "appDefaults"; });

TEST(EvidenceReadCursorFileStorageTest, NamesFilesAfterTheScopesDigest) {
  const testing::TemporaryDirectory directory;
  const EvidenceReadCursorFileStorage storage(directory.path());
  EXPECT_EQ(storage.directory(), directory.path() / "Kovi" / "EvidenceReadCursors" / "v1");
  const std::string digest = kScope.digest();
  EXPECT_EQ(digest.size(), 64u);
  EXPECT_EQ(digest.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(storage.recordFile(kScope), storage.directory() / (digest + ".json"));
  EXPECT_EQ(storage.acceptedFile(kScope), storage.directory() / (digest + ".accepted.json"));

  // Every field takes part, and moving bytes between fields changes the name.
  std::vector<EvidenceReadScope> scopes(8, kScope);
  scopes[1].kind = EvidenceReadScopeKind::purrl;
  scopes[2].ownerID = "acct-ayse2";
  scopes[3].subjectID = "kovi-43";
  scopes[4].bindingID = "binding-8";
  scopes[5].writerEpoch = 30;
  scopes[6].writerDeviceID = "device-2";
  scopes[7].ownerID = "acct-ays";
  scopes[7].subjectID = "ekovi-42";
  std::set<std::string> digests;
  for (const auto& scope : scopes) digests.insert(scope.digest());
  EXPECT_EQ(digests.size(), scopes.size());
}

TEST(EvidenceReadCursorFileStorageTest, DuplicateKeysAndUnusableFilesAreReported) {
  const testing::TemporaryDirectory directory;
  EvidenceReadCursorFileStorage storage(directory.path());
  ASSERT_TRUE(writeFileAtomically(storage.recordFile(kScope),
                                  R"({"version": 1, "version": 1, "scope": )" + kScopeJson + R"(, "lastItemID": "3"})")
                  .has_value());
  auto loaded = storage.loadRecord(kScope);
  ASSERT_FALSE(loaded.has_value());
  EXPECT_EQ(loaded.error().error, EvidenceReadError::invalidStoredCursor);
  EXPECT_NE(loaded.error().detail.find("version: duplicate key"), std::string::npos);

  // A file where the cursor folder belongs: nothing can be stored there.
  const auto blocked = directory.write("blocked", "");
  EvidenceReadCursorFileStorage unwritable(blocked);
  const auto saved = unwritable.saveRecord({Storage::kVersion, kScope, "3"});
  ASSERT_FALSE(saved.has_value());
  EXPECT_EQ(saved.error().error, EvidenceReadError::storageUnavailable);
}

// A writer killed at any moment leaves the old record or the new one, never
// a torn file: a child rewrites the cursor in a loop until it is killed -9.
TEST(EvidenceReadCursorFileStorageTest, AKilledWriterLeavesTheOldOrTheNewRecord) {
  const testing::TemporaryDirectory directory;
  const std::string longItem(4000, 'b');
  for (int round = 0; round < 12; ++round) {
    EvidenceReadCursorFileStorage storage(directory.path());
    ASSERT_TRUE(storage.saveRecord({Storage::kVersion, kScope, "a"}).has_value());
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      EvidenceReadCursorFileStorage writer(directory.path());
      for (unsigned count = 0;; ++count) {
        (void)writer.saveRecord({Storage::kVersion, kScope, count % 2 == 0 ? longItem : "a"});
      }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5 + 7 * round));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    const auto loaded = storage.loadRecord(kScope);
    ASSERT_TRUE(loaded.has_value()) << "round " << round << ": " << loaded.error().detail;
    ASSERT_TRUE(loaded->has_value());
    const std::string& item = (*loaded)->lastItemID;
    EXPECT_TRUE(item == "a" || item == longItem) << "round " << round << ": torn item of " << item.size() << " bytes";
  }
}

}  // namespace
}  // namespace kovi
