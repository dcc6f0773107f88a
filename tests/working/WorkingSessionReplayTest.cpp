#include <gtest/gtest.h>

#include <string>

#include "KoviKit/working/WorkingDesktopObserver.h"
#include "KoviKit/working/WorkingSessionCoding.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "tests/working/WorkingSessionTestSupport.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using nlohmann::json;
using Type = WorkingSessionEvent::Type;

json replayDocument() {
  return {{"policy", encodeRecord(testing::sessionTestPolicy())},
          {"sessionID", "s1"},
          {"deviceID", "mac-1"},
          {"events",
           {{{"at", 0}, {"type", "start"}, {"readiness", encodeRecord(testing::allReady())}},
            {{"at", 1000}, {"type", "passive"}, {"eligible", true}, {"continuityToken", "call"}},
            {{"at", 2000}, {"type", "transport"}, {"state", "offlineLocal"}},
            {{"at", 3000}, {"type", "complete"}}}}};
}

TEST(WorkingSessionReplayTest, DecodesThePolicyIdentifiersAndEveryEventKind) {
  const auto replay = decodeWorkingSessionReplay(replayDocument().dump());
  ASSERT_TRUE(replay.has_value()) << replay.error().message();
  EXPECT_EQ(replay->engine.policy(), testing::sessionTestPolicy());
  EXPECT_EQ(replay->engine.sessionID(), "s1");
  EXPECT_EQ(replay->events, (std::vector<WorkingSessionEvent>{
                                testing::startEvent(0), testing::passiveEvent(1000, true, "call"),
                                testing::transportEvent(2000, WorkingTransportState::offlineLocal),
                                testing::sessionEvent(3000, Type::complete)}));
}

TEST(WorkingSessionReplayTest, RefusesDocumentsNamingWhereAndWhy) {
  // Each row of replay-refusals.json patches the document above.
  const auto cases = json::parse(testing::workingDataFile("replay-refusals.json"));
  ASSERT_EQ(cases.size(), 8U);
  for (const auto& refused : cases) {
    SCOPED_TRACE(refused.at("name").get<std::string>());
    const auto replay = decodeWorkingSessionReplay(replayDocument().patch(refused.at("patch")).dump());
    ASSERT_FALSE(replay.has_value());
    EXPECT_EQ(replay.error().message(), refused.at("message").get<std::string>());
  }
}

TEST(WorkingSessionReplayTest, DerivesTheSessionPolicyFromTheRules) {
  const auto policy = WorkingSessionPolicy::fromRules(testing::workingRules("daily-rules.json"));
  ASSERT_TRUE(policy.has_value());
  // Standard strictness keeps idle on; the debounce is shorter than the heartbeat; the iPhone is auxiliary; funded
  // work needs the server lease.
  WorkingSessionPolicy expected;
  expected.idleThresholdMS = 300'000;
  expected.resumeDebounceMS = 10'000;
  expected.resumeMaximumInputGapMS = 10'000;
  expected.maximumObservationGapMS = (60 + 86'400) * 1000;
  expected.requiresAppBlocking = true;
  expected.requiresServerLease = true;
  EXPECT_EQ(*policy, expected) << encodeRecord(*policy).dump();

  auto phone = testing::decodeEdited("daily-rules.json", [](json& rules) {
    rules["blocking"]["iphone"]["apps"] = {{"mode", "blocklist"}, {"required", true}};
    rules["blocking"]["iphoneEnforcement"] = "required";
  });
  ASSERT_TRUE(phone.has_value()) << phone.error().reason;
  EXPECT_TRUE(WorkingSessionPolicy::fromRules(*phone)->requiresPhoneProtection);

  auto strictWithoutIdle = testing::decodeEdited("daily-rules.json", [](json& rules) {
    rules["verification"]["strictness"] = "strict";
    rules["verification"]["idleThresholdSeconds"] = nullptr;
  });
  ASSERT_TRUE(strictWithoutIdle.has_value()) << strictWithoutIdle.error().reason;
  EXPECT_EQ(WorkingSessionPolicy::fromRules(*strictWithoutIdle).error().kind, WorkingSessionError::Kind::invalidPolicy);
}

TEST(WorkingSessionReplayTest, DesktopReadingsBecomeReadinessActivityAndSleep) {
  WorkingDesktopObserver observer;
  const WorkingDesktopReading ready{5'000, true, false, false};
  const auto first = observer.observe(ready, 100'000);
  ASSERT_EQ(first.size(), 1U);
  EXPECT_EQ(first[0].type, Type::readiness);
  EXPECT_EQ(first[0].readiness, (WorkingSessionReadiness{true, true, true, false, false, false, false}));
  // Idle time grew with the clock: no new input.
  EXPECT_EQ(observer.observe({5'500, true, false, false}, 100'500)[0].type, Type::tick);
  // Idle time fell: input since the last reading.
  EXPECT_EQ(observer.observe({100, true, false, false}, 101'000)[0].type, Type::activity);
  const auto asleep = observer.observe({200, true, false, true}, 101'100);
  ASSERT_EQ(asleep.size(), 1U);
  EXPECT_EQ(asleep[0].type, Type::sleep);
  EXPECT_EQ(observer.observe({300, true, false, false}, 101'200)[0].type, Type::wake);
  // A lock that logind cannot report counts as locked.
  const auto unknown = observer.observe({400, true, std::nullopt, false}, 101'300);
  EXPECT_EQ(unknown[0].type, Type::readiness);
  EXPECT_FALSE(unknown[0].readiness.deviceUnlocked);
}

}  // namespace
}  // namespace kovi
