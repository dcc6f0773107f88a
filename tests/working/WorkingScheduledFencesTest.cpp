#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/working/WorkingResumeAuthorizationFence.h"
#include "KoviKit/working/WorkingScheduledReminderFence.h"
#include "KoviKit/working/WorkingScheduledStartFence.h"

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

struct FireCase {
  const char* name;
  Fence::State state;
  UnixMillis now;
  std::int64_t ownerEpoch;
  std::int64_t refreshEpoch;
  std::optional<Failure> failure;
};

class StartFenceFireTest : public ::testing::TestWithParam<FireCase> {};

TEST_P(StartFenceFireTest, FiresOnlyArmedForTheCurrentEpochsInsideTheWindow) {
  const FireCase& c = GetParam();
  Fence fence = armedFence();
  fence.state = c.state;
  const Fence before = fence;
  const auto outcome = fence.fire(c.now, c.ownerEpoch, c.refreshEpoch);
  if (c.failure) {
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error(), *c.failure);
    EXPECT_EQ(fence, before) << "a refused fire changes nothing";
  } else {
    ASSERT_TRUE(outcome.has_value());
    EXPECT_EQ(outcome->preparedAt, c.now);
    EXPECT_EQ(fence.state, Fence::State::fired);
    EXPECT_EQ(fence.firedAt, c.now);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, StartFenceFireTest,
    ::testing::Values(FireCase{"idle", Fence::State::idle, kStart, 4, 9, Failure::notArmed},
                      FireCase{"fired", Fence::State::fired, kStart, 4, 9, Failure::alreadyFired},
                      // The state is checked before anything else.
                      FireCase{"firedStaleEarly", Fence::State::fired, kStart - 1, 3, 8, Failure::alreadyFired},
                      FireCase{"ownerBelow", Fence::State::armed, kStart, 3, 9, Failure::ownerMismatch},
                      FireCase{"ownerAbove", Fence::State::armed, kStart, 5, 9, Failure::ownerMismatch},
                      // The owner epoch is checked before the refresh epoch and the clock.
                      FireCase{"ownerAndRefresh", Fence::State::armed, kStart - 1, 5, 8, Failure::ownerMismatch},
                      FireCase{"refreshBelow", Fence::State::armed, kStart, 4, 8, Failure::refreshMismatch},
                      FireCase{"refreshEarly", Fence::State::armed, kStart - 1, 4, 10, Failure::refreshMismatch},
                      FireCase{"oneBeforeStart", Fence::State::armed, kStart - 1, 4, 9, Failure::early},
                      FireCase{"atStart", Fence::State::armed, kStart, 4, 9, std::nullopt},
                      FireCase{"oneAfterStart", Fence::State::armed, kStart + 1, 4, 9, std::nullopt},
                      FireCase{"oneBeforeDeadline", Fence::State::armed, kLate - 1, 4, 9, std::nullopt},
                      FireCase{"atDeadline", Fence::State::armed, kLate, 4, 9, std::nullopt},
                      FireCase{"oneAfterDeadline", Fence::State::armed, kLate + 1, 4, 9, Failure::expired}),
    [](const auto& info) { return std::string(info.param.name); });

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

}  // namespace
}  // namespace kovi
