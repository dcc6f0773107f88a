#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/working/WorkingResumeAuthorizationFence.h"
#include "KoviKit/working/WorkingScheduledReady.h"
#include "KoviKit/working/WorkingScheduledReadyStore.h"
#include "KoviKit/working/WorkingScheduledReminderFence.h"
#include "KoviKit/working/WorkingScheduledStartFence.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Fence = WorkingScheduledStartFence;
using Failure = Fence::Failure;

constexpr UnixMillis kStart = 1'800'000'000'000;
constexpr UnixMillis kLate = kStart + 5 * 60 * 1000;

Fence armedFence() {
  Fence fence;
  EXPECT_TRUE(fence.arm({"owner-1", "room-1", "hash-1", "window-1", kStart, kLate}, 4, 9));
  return fence;
}

TEST(StartFenceTest, FiresOnlyArmedForTheCurrentEpochsInsideTheWindow) {
  // Rows of start-fence-fires.json: a fence open from kStart through kLate (300 000 ms on),
  // for owner epoch 4 and refresh epoch 9, put in `state` and fired.
  const auto cases = nlohmann::json::parse(testing::workingDataFile("start-fence-fires.json"));
  ASSERT_EQ(cases.size(), 14U);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.dump());
    const auto state = enumFromName<Fence::State>(c.at("state").get<std::string>());
    ASSERT_TRUE(state.has_value());
    const UnixMillis now = kStart + c.at("sinceStart").get<UnixMillis>();
    Fence fence = armedFence();
    fence.state = *state;
    const Fence before = fence;
    const auto outcome = fence.fire(now, c.at("ownerEpoch"), c.at("refreshEpoch"));
    if (!c.at("failure").is_null()) {
      ASSERT_FALSE(outcome.has_value());
      EXPECT_EQ(enumName(outcome.error()), c.at("failure").get<std::string>());
      EXPECT_EQ(fence, before) << "a refused fire changes nothing";
    } else {
      ASSERT_TRUE(outcome.has_value());
      EXPECT_EQ(outcome->preparedAt, now);
      EXPECT_EQ(fence.state, Fence::State::fired);
      EXPECT_EQ(fence.firedAt, now);
    }
  }
}

TEST(StartFenceTest, ASecondFireReportsAlreadyFiredAndKeepsTheFirstTime) {
  Fence fence = armedFence();
  ASSERT_TRUE(fence.fire(kStart + 10, 4, 9).has_value());
  const auto again = fence.fire(kStart + 20, 4, 9);
  ASSERT_FALSE(again.has_value());
  EXPECT_EQ(again.error(), Failure::alreadyFired);
  EXPECT_EQ(fence.firedAt, kStart + 10);
}

TEST(StartFenceTest, ReArmingStartsANewGenerationAndForgetsTheLastFire) {
  Fence fence = armedFence();
  ASSERT_TRUE(fence.fire(kStart, 4, 9).has_value());
  fence.receipt = "receipt-1";
  ASSERT_TRUE(fence.arm({"owner-1", "room-1", "hash-1", "window-2", kStart + 1000, kStart + 2000}, 4, 10));
  EXPECT_EQ(fence.armGeneration, 2);
  EXPECT_EQ(fence.state, Fence::State::armed);
  EXPECT_EQ(fence.firedAt, std::nullopt);
  EXPECT_EQ(fence.receipt, std::nullopt);
  // The epochs of the new arm are the ones that may fire now.
  EXPECT_EQ(fence.fire(kStart + 1000, 4, 9).error(), Failure::refreshMismatch);
}

TEST(StartFenceTest, APlanEndingBeforeItStartsIsNotArmedAndCancelKeepsAFire) {
  Fence fence;
  EXPECT_FALSE(fence.arm({"o", "r", "h", "w", kStart, kStart - 1}, 1, 1));
  EXPECT_EQ(fence, Fence{});

  Fence fired = armedFence();
  ASSERT_TRUE(fired.fire(kStart, 4, 9).has_value());
  fired.cancel();
  EXPECT_EQ(fired.state, Fence::State::fired);

  Fence armed = armedFence();
  armed.cancel();
  EXPECT_EQ(armed.fire(kStart, 4, 9).error(), Failure::notArmed);
}

using Reminders = WorkingScheduledReminderFence;

TEST(ReminderFenceTest, DeliversEachCurrentTicketOnce) {
  Reminders fence;
  fence.ownerEpoch = 7;
  const auto advance = fence.schedule(Reminders::Kind::advance, "w1");
  const auto ready = fence.schedule(Reminders::Kind::ready, "w1");
  EXPECT_EQ(advance.key, "advance:w1");
  EXPECT_TRUE(fence.deliver(advance).has_value());
  EXPECT_TRUE(fence.deliver(ready).has_value()) << "the two kinds do not replace each other";
  EXPECT_EQ(fence.deliver(advance).error(), Reminders::Refusal::alreadyDelivered);
}

TEST(ReminderFenceTest, RefusesTicketsFromAStaleGenerationOrOwner) {
  Reminders fence;
  fence.ownerEpoch = 7;
  const auto first = fence.schedule(Reminders::Kind::ready, "w1");
  const auto second = fence.schedule(Reminders::Kind::ready, "w1");
  EXPECT_EQ(second.generation, first.generation + 1);
  EXPECT_EQ(fence.deliver(first).error(), Reminders::Refusal::staleGeneration);
  EXPECT_EQ(fence.deliver({7, "ready:w9", 1}).error(), Reminders::Refusal::staleGeneration);

  fence.changeOwner(8);
  EXPECT_EQ(fence.deliver(second).error(), Reminders::Refusal::staleOwner);
  // A ticket of the new owner with an old generation number finds nothing.
  EXPECT_EQ(fence.deliver({8, second.key, second.generation}).error(), Reminders::Refusal::staleGeneration);
  const auto fresh = fence.schedule(Reminders::Kind::ready, "w1");
  EXPECT_EQ(fresh.ownerEpoch, 8);
  EXPECT_TRUE(fence.deliver(fresh).has_value());
}

using Resume = WorkingResumeAuthorizationFence;

TEST(ResumeFenceTest, HonoursOnlyTheCurrentGenerationForItsSessionOnce) {
  Resume fence;
  const auto stale = fence.authorize("s1");
  const auto snapshot = fence.snapshot();
  const auto token = fence.authorize("s1");
  EXPECT_FALSE(fence.honours(stale));
  EXPECT_FALSE(fence.isCurrent(snapshot));
  EXPECT_FALSE(fence.honours({token.generation, "s2"}));
  EXPECT_TRUE(fence.honours(token));
  EXPECT_TRUE(fence.consume(token));
  EXPECT_FALSE(fence.consume(token)) << "a token is used once";

  const auto afterRevoke = fence.authorize("s2");
  fence.revoke();
  EXPECT_FALSE(fence.honours(afterRevoke));
  EXPECT_EQ(fence.sessionID, std::nullopt);
}

using ReadyFailure = WorkingScheduledReady::Failure;

WorkingScheduledReady ready() {
  return {"owner", "room", "hash", "w1", kStart, kStart + 3'600'000, kStart - 60'000, "fp", {"mac-1"}, true};
}

WorkingScheduledReadyContext context() { return {"owner", "room", "hash", "fp", kStart - 30'000, true}; }

TEST(ScheduledReadyTest, ReportsTheFirstProblem) {
  const struct {
    const char* name;
    void (*change)(WorkingScheduledReady&, WorkingScheduledReadyContext&);
    std::optional<ReadyFailure> failure;
  } cases[] = {
      {"fine", [](auto&, auto&) {}, std::nullopt},
      {"no window ID", [](auto& r, auto&) { r.windowID.clear(); }, ReadyFailure::invalidSnapshot},
      {"observed after end", [](auto& r, auto&) { r.observedAt = r.endsAt + 1; }, ReadyFailure::invalidSnapshot},
      // An invalid snapshot wins over every later problem.
      {"invalid and background", [](auto& r, auto& c) { r.ownerID.clear(), c.inForeground = false; },
       ReadyFailure::invalidSnapshot},
      {"other owner", [](auto&, auto& c) { c.ownerID = "other"; }, ReadyFailure::changed},
      {"other plan", [](auto&, auto& c) { c.sessionFingerprint = "other"; }, ReadyFailure::changed},
      {"last millisecond", [](auto& r, auto& c) { c.now = r.endsAt - 1; }, std::nullopt},
      {"at end", [](auto& r, auto& c) { c.now = r.endsAt; }, ReadyFailure::expired},
      {"no Mac", [](auto& r, auto&) { r.availableMacIDs.clear(); }, ReadyFailure::noMac},
      {"background", [](auto&, auto& c) { c.inForeground = false; }, ReadyFailure::background},
  };
  for (const auto& example : cases) {
    auto snapshot = ready();
    auto now = context();
    example.change(snapshot, now);
    const auto outcome = checkWorkingScheduledReady(snapshot, now);
    EXPECT_EQ(outcome ? std::nullopt : std::optional(enumName(outcome.error())),
              example.failure ? std::optional(enumName(*example.failure)) : std::nullopt)
        << example.name;
  }
}

TEST(ScheduledReadyTest, EveryFailureHasItsOwnText) {
  EXPECT_EQ(workingScheduledReadyFailureText(ReadyFailure::noMac),
            "Etkinlik izni hazır, bağlı bir Mac bulunamadı. Mac’te Kovi’i aç.");
  std::set<std::string_view> texts;
  for (const auto& [failure, name] : EnumNames<ReadyFailure>::table) texts.insert(workingScheduledReadyFailureText(failure));
  EXPECT_EQ(texts.size(), EnumNames<ReadyFailure>::table.size());
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
