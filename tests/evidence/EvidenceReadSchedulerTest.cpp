#include <gtest/gtest.h>

#include "KoviKit/evidence/EvidenceReadCursorFileStorage.h"
#include "KoviKit/evidence/EvidenceReadScheduler.h"
#include "KoviKit/foundation/FileIO.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

const EvidenceReadScope kScope{EvidenceReadScopeKind::walking, "acct-ayse", "kovi-42", "binding-7", 3, "device-1"};
const UnixMillis kStart = testing::at("2026-03-02T00:00:00+03:00");
constexpr UnixMillis kDay = 24 * testing::kHour;

std::vector<HealthEvidenceDayWindow> days(int from, int count) {
  std::vector<HealthEvidenceDayWindow> windows;
  for (int day = from; day < from + count; ++day) windows.push_back({day, kStart + day * kDay, kStart + (day + 1) * kDay});
  return windows;
}

std::vector<int> dayIndexes(const ScheduledHealthEvidenceRead& read) {
  std::vector<int> indexes;
  for (const auto& window : read.request.days) indexes.push_back(window.day);
  return indexes;
}

class EvidenceReadSchedulerTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  EvidenceReadCursorFileStorage storage{directory.path()};
  EvidenceReadScheduler scheduler{storage, "acct-ayse", 3};

  std::optional<std::string> storedItem() {
    const auto record = storage.loadRecord(kScope);
    EXPECT_TRUE(record.has_value());
    return record && *record ? std::optional((*record)->lastItemID) : std::nullopt;
  }
};

TEST_F(EvidenceReadSchedulerTest, HandsOutBatchesAfterTheStoredCursorUntilTheEnd) {
  const auto candidates = days(0, 7);
  std::vector<std::pair<std::vector<int>, bool>> batches;
  for (int round = 0; round < 4; ++round) {
    const auto read = scheduler.begin(kScope, candidates, kStart + 8 * kDay, true);
    ASSERT_TRUE(read.has_value()) << read.error().detail;
    EXPECT_EQ(read->request.observationCutoff, kStart + 8 * kDay);
    EXPECT_EQ(read->request.authorizationRequestCompleted, true);
    batches.emplace_back(dayIndexes(*read), read->reachedEnd);
    ASSERT_EQ(scheduler.commit(*read), true);
  }
  // The first read starts at the first candidate; once the stored last item
  // is the last candidate, the batch is empty and says so.
  const std::vector<std::pair<std::vector<int>, bool>> expected{
      {{0, 1, 2}, false}, {{3, 4, 5}, false}, {{6}, true}, {{}, true}};
  EXPECT_EQ(batches, expected);
  EXPECT_EQ(storedItem(), "6");
}

TEST_F(EvidenceReadSchedulerTest, ASecondBeginOfTheSameScopeWaitsForTheFirst) {
  const auto first = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(first.has_value());
  const auto second = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_FALSE(second.has_value());
  EXPECT_EQ(second.error().error, EvidenceReadError::readInProgress);

  EvidenceReadScope otherKovi = kScope;
  otherKovi.subjectID = "kovi-43";
  EXPECT_TRUE(scheduler.begin(otherKovi, days(0, 5), kStart).has_value());

  scheduler.abandon(*first);
  EXPECT_EQ(storedItem(), std::nullopt);
  const auto again = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(again.has_value());
  EXPECT_EQ(dayIndexes(*again), (std::vector{0, 1, 2}));
  EXPECT_EQ(scheduler.commit(*first), false);
  EXPECT_EQ(scheduler.commit(*again), true);
}

TEST_F(EvidenceReadSchedulerTest, SigningOutDuringAReadLeavesTheCursorUnchanged) {
  auto read = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(read.has_value());
  ASSERT_EQ(scheduler.commit(*read), true);
  read = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(read.has_value());
  const auto generation = scheduler.generation();

  scheduler.changeOwner(std::nullopt);
  EXPECT_NE(scheduler.generation(), generation);
  EXPECT_EQ(scheduler.commit(*read), false);
  EXPECT_EQ(storedItem(), "2");

  // Signed in again, the same account resumes where the cursor stands.
  scheduler.changeOwner("acct-ayse");
  EXPECT_EQ(scheduler.commit(*read), false);
  const auto resumed = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(resumed.has_value());
  EXPECT_EQ(dayIndexes(*resumed), (std::vector{3, 4}));
}

TEST_F(EvidenceReadSchedulerTest, RefusesWhatItCannotSchedule) {
  EvidenceReadScope otherOwner = kScope;
  otherOwner.ownerID = "acct-mert";
  EvidenceReadScope noBinding = kScope;
  noBinding.bindingID.clear();
  auto unordered = days(0, 3);
  std::swap(unordered[0], unordered[2]);
  auto repeated = days(0, 2);
  repeated[1].day = 0;
  auto empty = days(0, 1);
  empty[0].end = empty[0].start;

  const std::vector<std::tuple<const char*, EvidenceReadScope, std::vector<HealthEvidenceDayWindow>, EvidenceReadError>>
      cases{
          {"notTheSignedInAccount", otherOwner, days(0, 3), EvidenceReadError::invalidScope},
          {"emptyBinding", noBinding, days(0, 3), EvidenceReadError::invalidScope},
          {"unordered", kScope, unordered, EvidenceReadError::invalidCandidates},
          {"repeated", kScope, repeated, EvidenceReadError::invalidCandidates},
          {"emptyWindow", kScope, empty, EvidenceReadError::invalidCandidates},
          {"nothing", kScope, {}, EvidenceReadError::noCandidates},
      };
  for (const auto& [name, scope, candidates, expected] : cases) {
    const auto read = scheduler.begin(scope, candidates, kStart);
    ASSERT_FALSE(read.has_value()) << name;
    EXPECT_EQ(read.error().error, expected) << name << ": " << read.error().detail;
  }
  EvidenceReadScheduler signedOut(storage, std::nullopt);
  EXPECT_EQ(signedOut.begin(kScope, days(0, 3), kStart).error().error, EvidenceReadError::invalidScope);
}

TEST_F(EvidenceReadSchedulerTest, AStoredCursorThatCannotBeUsedStopsTheRead) {
  const std::string scope = testing::evidenceData("scope.json");
  const std::vector<std::pair<std::string, EvidenceReadError>> stored{
      {R"({"version":1,"scope":)" + scope + R"(,"lastItemID":"9"})", EvidenceReadError::invalidStoredCursor},
      {R"({"version":2})", EvidenceReadError::unsupportedStoredVersion},
  };
  for (const auto& [document, expected] : stored) {
    ASSERT_TRUE(writeFileAtomically(storage.recordFile(kScope), document).has_value());
    const auto read = scheduler.begin(kScope, days(0, 5), kStart);
    ASSERT_FALSE(read.has_value()) << document.substr(0, 80);
    EXPECT_EQ(read.error().error, expected) << read.error().detail;
  }
  // A failed begin leaves no mark behind: a good cursor reads at once.
  ASSERT_TRUE(storage.saveRecord({EvidenceReadCursorStorage::kVersion, kScope, "1"}).has_value());
  const auto read = scheduler.begin(kScope, days(0, 5), kStart);
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(dayIndexes(*read), (std::vector{2, 3, 4}));
}

TEST_F(EvidenceReadSchedulerTest, ACommitThatCannotBeStoredIsReported) {
  const auto blocked = directory.write("blocked", "");
  EvidenceReadCursorFileStorage unwritable(blocked);
  EvidenceReadScheduler scheduler(unwritable, "acct-ayse");
  const auto read = scheduler.begin(kScope, days(0, 2), kStart);
  ASSERT_TRUE(read.has_value()) << read.error().detail;
  const auto committed = scheduler.commit(*read);
  ASSERT_FALSE(committed.has_value());
  EXPECT_EQ(committed.error().error, EvidenceReadError::storageUnavailable);
}

TEST_F(EvidenceReadSchedulerTest, AScheduledReadReadsOnlyItsBatch) {
  const auto read = scheduler.begin(kScope, days(0, 5), kStart + 10 * kDay);
  ASSERT_TRUE(read.has_value());
  testing::FixedStore store;
  store.answer = std::vector<HealthStepSample>{{kStart + kDay, kStart + kDay + testing::kBucket, 120, "Apple Watch"}};
  const auto batch = read->run(store, HealthSourcePriority());
  EXPECT_EQ(batch.items, days(0, 3));
  EXPECT_FALSE(batch.reachedEnd);
  ASSERT_EQ(batch.output.result.days.size(), 3u);
  EXPECT_EQ(batch.output.result.days[0].outcome, HealthEvidenceReadOutcome::noReadableData);
  EXPECT_EQ(batch.output.result.days[1].buckets.at(0).amount, 120);
}

}  // namespace
}  // namespace kovi
