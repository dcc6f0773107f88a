#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/working/WorkingScheduledReady.h"
#include "KoviKit/working/WorkingScheduledReadyStore.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Failure = WorkingScheduledReady::Failure;
constexpr UnixMillis kStart = 1'800'000'000'000;

WorkingScheduledReady ready() {
  return {"owner", "room", "hash", "w1", kStart, kStart + 3'600'000, kStart - 60'000, "fp", {"mac-1"}, true};
}

WorkingScheduledReadyContext context() { return {"owner", "room", "hash", "fp", kStart - 30'000, true}; }

struct ReadyCase {
  const char* name;
  void (*change)(WorkingScheduledReady&, WorkingScheduledReadyContext&);
  std::optional<Failure> failure;
};

class ScheduledReadyCheckTest : public ::testing::TestWithParam<ReadyCase> {};

TEST_P(ScheduledReadyCheckTest, ReportsTheFirstProblem) {
  auto snapshot = ready();
  auto now = context();
  GetParam().change(snapshot, now);
  const auto outcome = checkWorkingScheduledReady(snapshot, now);
  if (GetParam().failure) {
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(enumName(outcome.error()), enumName(*GetParam().failure));
  } else {
    EXPECT_TRUE(outcome.has_value());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ScheduledReadyCheckTest,
    ::testing::Values(
        ReadyCase{"fine", [](auto&, auto&) {}, std::nullopt},
        ReadyCase{"noWindowID", [](auto& r, auto&) { r.windowID.clear(); }, Failure::invalidSnapshot},
        ReadyCase{"observedAfterEnd", [](auto& r, auto&) { r.observedAt = r.endsAt + 1; }, Failure::invalidSnapshot},
        // An invalid snapshot wins over every later problem.
        ReadyCase{"invalidAndBackground",
                  [](auto& r, auto& c) {
                    r.ownerID.clear();
                    c.inForeground = false;
                  },
                  Failure::invalidSnapshot},
        ReadyCase{"otherOwner", [](auto&, auto& c) { c.ownerID = "other"; }, Failure::changed},
        ReadyCase{"otherPlan", [](auto&, auto& c) { c.sessionFingerprint = "other"; }, Failure::changed},
        ReadyCase{"lastMillisecond", [](auto& r, auto& c) { c.now = r.endsAt - 1; }, std::nullopt},
        ReadyCase{"atEnd", [](auto& r, auto& c) { c.now = r.endsAt; }, Failure::expired},
        ReadyCase{"noMac", [](auto& r, auto&) { r.availableMacIDs.clear(); }, Failure::noMac},
        ReadyCase{"background", [](auto&, auto& c) { c.inForeground = false; }, Failure::background}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(ScheduledReadyTest, EveryFailureHasItsOwnText) {
  EXPECT_EQ(workingScheduledReadyFailureText(Failure::noMac),
            "Etkinlik izni hazır, bağlı bir Mac bulunamadı. Mac’te Kovi’i aç.");
  std::set<std::string_view> texts;
  for (const auto& [failure, name] : EnumNames<Failure>::table) texts.insert(workingScheduledReadyFailureText(failure));
  EXPECT_EQ(texts.size(), EnumNames<Failure>::table.size());
  EXPECT_FALSE(texts.contains(""));
}

class ScheduledReadyStoreTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  std::shared_ptr<FileKeyValueStore> domain = std::make_shared<FileKeyValueStore>("group.test", directory.path());
  WorkingScheduledReadyStore store{domain};
};

TEST_F(ScheduledReadyStoreTest, AWindowIsClaimedOnceWhileEnabledForTheSameRules) {
  using Outcome = WorkingScheduledReadyStore::ClaimOutcome;
  EXPECT_EQ(store.claim("owner", "room", "hash", "w1", kStart), Outcome::notEnabled);
  EXPECT_EQ(store.record("owner", "room"), std::nullopt) << "a refused claim creates no record";

  ASSERT_TRUE(store.setEnabled("owner", "room", "hash", true).has_value());
  EXPECT_EQ(store.claim("owner", "room", "other-hash", "w1", kStart), Outcome::notEnabled);
  EXPECT_EQ(store.claim("owner", "room", "hash", "w1", kStart), Outcome::claimed);
  EXPECT_EQ(store.claim("owner", "room", "hash", "w1", kStart + 5), Outcome::alreadyClaimed);
  EXPECT_EQ(store.claim("owner", "room", "hash", "w2", kStart - 5), Outcome::claimed);

  // Another store object over the same domain sees what this one wrote.
  WorkingScheduledReadyStore again(std::make_shared<FileKeyValueStore>("group.test", directory.path()));
  const auto record = again.record("owner", "room");
  ASSERT_TRUE(record.has_value() && record->has_value());
  EXPECT_EQ((*record)->claims, (std::map<std::string, UnixMillis>{{"w1", kStart}, {"w2", kStart - 5}}));
  EXPECT_EQ((*record)->latestClaimAt, kStart);

  // New rules forget the claims made under the old ones.
  const auto changed = store.setEnabled("owner", "room", "hash-2", true);
  ASSERT_TRUE(changed.has_value());
  EXPECT_TRUE(changed->claims.empty());
  EXPECT_EQ(store.claim("owner", "room", "hash-2", "w1", kStart), Outcome::claimed);
}

TEST_F(ScheduledReadyStoreTest, KeysSeparateOwnerAndRoomByLength) {
  EXPECT_NE(WorkingScheduledReadyStore::key("ab", "c"), WorkingScheduledReadyStore::key("a", "bc"));
  EXPECT_TRUE(WorkingScheduledReadyStore::key("a", "b").starts_with("kovi.working.scheduled-ready.v1."));
  ASSERT_TRUE(store.setEnabled("ab", "c", "h", true).has_value());
  EXPECT_EQ(store.record("a", "bc"), std::nullopt);
}

TEST_F(ScheduledReadyStoreTest, ACorruptRecordIsReportedAndLeftAlone) {
  const std::string key = WorkingScheduledReadyStore::key("owner", "room");
  ASSERT_TRUE(domain->setValue(key, {{"version", 1}, {"ownerID", "owner"}}).has_value());
  const auto read = store.record("owner", "room");
  ASSERT_FALSE(read.has_value());
  EXPECT_EQ(read.error().kind, WorkingScheduledStoreError::Kind::corrupt);
  EXPECT_EQ(read.error().message, key + ".roomID: missing key");

  EXPECT_FALSE(store.claim("owner", "room", "hash", "w1", kStart).has_value());
  EXPECT_EQ(domain->value(key), (nlohmann::json{{"version", 1}, {"ownerID", "owner"}}));
}

}  // namespace
}  // namespace kovi
