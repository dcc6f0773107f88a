#include <gtest/gtest.h>

#include <string>

#include "KoviMacHolds/MacHoldsIdentity.h"
#include "tests/holds_agent/MacHoldsFakes.h"

namespace kovi::holds::testing {
namespace {

// Every story starts from a fresh agent over the fakes.
class MacHoldsEngineTest : public ::testing::Test {
 protected:
  FakeAgent agent;
};

TEST_F(MacHoldsEngineTest, StartsObservingAndTicksEveryFiveSeconds) {
  auto delegate = agent.launchAt("2026-11-23T10:00", examWeekJson());

  EXPECT_FALSE(agent.runLoop.hasExited());
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didLaunchApplication), 1u);
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didTerminateApplication), 1u);
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didWake), 1u);
  // The guard's front-application observer comes with the hold.
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didActivateApplication), 1u);
  ASSERT_EQ(agent.runLoop.timers.size(), 1u);
  EXPECT_EQ(agent.runLoop.timers.begin()->second.first, std::chrono::milliseconds(5000));
  EXPECT_EQ(agent.log, std::vector<std::string>{"hold study until 11:30"});
}

TEST_F(MacHoldsEngineTest, SecondCopyExitsAtOnceWithoutObservingAnything) {
  agent.workspace.anotherAgent = true;
  auto delegate = agent.launchAt("2026-11-23T10:00", examWeekJson());

  EXPECT_EQ(agent.runLoop.status, kMacHoldsExitDone);
  EXPECT_TRUE(agent.runLoop.timers.empty());
  for (auto event : {MacWorkspaceEvent::didLaunchApplication, MacWorkspaceEvent::didTerminateApplication,
                     MacWorkspaceEvent::didWake, MacWorkspaceEvent::didActivateApplication}) {
    EXPECT_EQ(agent.workspace.observerCount(event), 0u);
  }
  EXPECT_EQ(agent.log, std::vector<std::string>{"exit: another copy of the agent is running"});
}

// One evaluation of a snapshot at an instant: what the engine does with each
// kind of decision (which decision is due is the decision table's own test).
struct DecisionCase {
  const char* name;
  std::optional<std::string> snapshot;  // absent: no file at all
  const char* localTime;
  bool mainAppRunning;
  std::optional<int> exitStatus;  // absent: keeps running
  bool holding;
  std::optional<bool> allowlist;
  const char* logLine;
};

const DecisionCase kDecisions[] = {
    {"studyBlockHoldsAllowList", examWeekJson(), "2026-11-23T10:00", false, std::nullopt, true, true,
     "hold study until 11:30"},
    // A block list, ending at midnight.
    {"socialHoldUntilMidnight", examWeekJson(), "2026-11-23T12:00", false, std::nullopt, true, false,
     "hold social until 00:00"},
    {"openSocialSpanStandsBy",
     examWeekJson(R"({"day": "2026-11-23", "usedMS": 0, "since": 1795424100000})"),
     "2026-11-23T12:00", false, std::nullopt, false, std::nullopt, "stand by: nothing is held right now"},
    {"mainAppRunningStandsBy", examWeekJson(), "2026-11-23T10:00", true, std::nullopt, false, std::nullopt,
     "stand by: Kovi is running"},
    {"missingFileExits", std::nullopt, "2026-11-23T10:00", false, 0, false, std::nullopt,
     "exit: nothing left to hold"},
};

TEST(MacHoldsEngineDecision, CarriesOutTheAction) {
  for (const DecisionCase& decision : kDecisions) {
    SCOPED_TRACE(decision.name);
    FakeAgent agent;
    agent.now = istanbul(decision.localTime);
    if (decision.snapshot) agent.writeSnapshot(*decision.snapshot);
    if (decision.mainAppRunning) agent.workspace.launch(std::string(kMacHoldsMainAppBundleID), "Kovi");
    auto delegate = agent.launch();

    EXPECT_EQ(agent.runLoop.status, decision.exitStatus);
    const MacHoldsAppGuard& guardian = delegate->engine()->guardian();
    EXPECT_EQ(guardian.plan().has_value(), decision.holding);
    EXPECT_EQ(guardian.isObservingFront(), decision.holding);
    if (decision.allowlist) {
      ASSERT_TRUE(guardian.plan());
      EXPECT_EQ(guardian.plan()->allowlist, *decision.allowlist);
    }
    ASSERT_FALSE(agent.log.empty());
    EXPECT_EQ(agent.log.back(), decision.logLine);
  }
}

TEST_F(MacHoldsEngineTest, ReplacedExecutableStopsTheGuardAndExitsWith75) {
  agent.workspace.launchInFront("com.hnc.Discord", "Discord");
  auto delegate = agent.launchAt("2026-11-23T12:00", examWeekJson());
  ASSERT_TRUE(agent.shield->visible);

  // An executable that cannot be examined (an installer in the middle of
  // copying) is no replacement, and is not taken as the agent's new identity.
  agent.launchIdentity.identity.reset();
  agent.runLoop.tick();
  agent.launchIdentity.identity = MacFileIdentity{1, 100};
  agent.runLoop.tick();
  EXPECT_FALSE(agent.runLoop.hasExited());
  EXPECT_TRUE(delegate->engine()->guardian().plan());

  agent.launchIdentity.identity = MacFileIdentity{1, 101};
  agent.runLoop.tick();

  EXPECT_EQ(agent.runLoop.status, kMacHoldsExitReplaced);
  EXPECT_FALSE(delegate->engine()->guardian().plan());
  EXPECT_FALSE(agent.shield->visible);
  EXPECT_EQ(agent.log.back(), "exit: the agent's executable was replaced; restarting");
}

TEST_F(MacHoldsEngineTest, StandsByWhileTheMainAppRunsAndHoldsAtOnceWhileItIsGone) {
  const pid_t kovi = agent.workspace.launch(std::string(kMacHoldsMainAppBundleID), "Kovi");
  const pid_t discord = agent.workspace.launchInFront("com.hnc.Discord", "Discord");
  auto delegate = agent.launchAt("2026-11-23T12:00", examWeekJson());

  for (int tick = 0; tick < 3; ++tick) agent.runLoop.tick();
  EXPECT_TRUE(agent.workspace.hidden.empty());
  EXPECT_FALSE(delegate->engine()->guardian().isObservingFront());
  EXPECT_EQ(agent.log, std::vector<std::string>{"stand by: Kovi is running"});

  // The terminate notification evaluates at once; no tick is needed.
  agent.workspace.terminate(kovi);
  EXPECT_EQ(agent.workspace.hidden, std::vector<pid_t>{discord});
  EXPECT_TRUE(agent.shield->visible);
  EXPECT_EQ(agent.log, (std::vector<std::string>{"stand by: Kovi is running", "hold social until 00:00",
                                                 "hold social until 00:00 — hid Discord"}));

  // Launching again mid-hold stops the guard on the launch notification.
  agent.workspace.launch(std::string(kMacHoldsMainAppBundleID), "Kovi");
  EXPECT_FALSE(agent.shield->visible);
  EXPECT_FALSE(delegate->engine()->guardian().plan());
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didActivateApplication), 0u);
}

TEST_F(MacHoldsEngineTest, TerminatedMainAppStillListedDoesNotKeepTheAgentStandingBy) {
  agent.workspace.applications.push_back(
      {77, std::string(kMacHoldsMainAppBundleID), "Kovi", MacActivationPolicy::regular, true});
  auto delegate = agent.launchAt("2026-11-23T12:00", examWeekJson());
  EXPECT_TRUE(delegate->engine()->guardian().plan());
}

TEST_F(MacHoldsEngineTest, RepeatedDecisionsAreLoggedOnceANewHoldAgainAndTheEndOfTheWeekExits) {
  auto delegate = agent.launchAt("2026-11-23T10:00", examWeekJson());
  agent.runLoop.tick();
  agent.workspace.wake();
  EXPECT_EQ(agent.log.size(), 1u);

  agent.now = istanbul("2026-11-23T14:05");
  agent.runLoop.tick();
  EXPECT_EQ(agent.log, (std::vector<std::string>{"hold study until 11:30", "hold study until 16:30"}));

  agent.now = istanbul("2026-11-27T07:00");  // the last exam night is over
  agent.runLoop.tick();
  EXPECT_EQ(agent.runLoop.status, kMacHoldsExitDone);
  EXPECT_EQ(agent.log.back(), "exit: nothing left to hold");
}

TEST_F(MacHoldsEngineTest, CallbacksOfAGoneEngineDoNothing) {
  agent.launchAt("2026-11-23T10:00", examWeekJson());
  // The engine removed its observers and timer on the way out.
  EXPECT_TRUE(agent.runLoop.timers.empty());
  agent.workspace.wake();
  agent.workspace.launch("com.hnc.Discord", "Discord");
  EXPECT_EQ(agent.log.size(), 1u);
}

}  // namespace
}  // namespace kovi::holds::testing
