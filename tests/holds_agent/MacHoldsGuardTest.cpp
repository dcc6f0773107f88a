#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "KoviMacHolds/MacHoldsGuard.h"
#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/MacHoldsSchedule.h"
#include "tests/holds_agent/MacHoldsFakes.h"
#include "tests/support/TestData.h"

namespace kovi::holds::testing {
namespace {

const Date kStudyEnd = Date::fromUnixMillis(1'795'427'400'000);  // 2026-11-23T12:50+03:00

MacFocus2EnforcementPlan planFor(const MacHoldsDue& due, bool keepCommunication) {
  auto plan = MacHoldsSchedule::plan(due, keepCommunication, "2026-11-23");
  EXPECT_TRUE(plan.has_value());
  return plan.value_or(MacFocus2EnforcementPlan{});
}

// A guard over the fake workspace, with the shield panels it creates recorded.
struct GuardFixture {
  FakeAgent agent;
  std::shared_ptr<MacHoldsAppGuard> guardian = std::make_shared<MacHoldsAppGuard>(MacHoldsGuardContext{
      .workspace = agent.workspace, .makeShieldPanel = agent.platform().makeShieldPanel,
      .log = [this](std::string_view line) { agent.log.emplace_back(line); }, .clock = agent.clock(), .catStage = {}});

  void hold(const MacHoldsDue& due, bool keepCommunication = false) {
    guardian->apply(due, planFor(due, keepCommunication));
  }

  pid_t frontApp(const std::string& id, const std::string& name,
                 MacActivationPolicy policy = MacActivationPolicy::regular) {
    const pid_t pid = agent.workspace.launch(id, name, policy);
    agent.workspace.activate(pid);
    return pid;
  }
};

using Kind = MacHoldsDue::Kind;

// Study is an allow-list: only study tools may come to the front. The Finder,
// the main app and the desktop's file manager are always spared; background
// and accessory applications are never held; Sleep and Social are block
// lists: the distractions go, the rest stays.
TEST(MacHoldsGuardFront, HidesOnlyHeldApplications) {
  const std::map<std::string, MacActivationPolicy> policies{{"regular", MacActivationPolicy::regular},
                                                            {"accessory", MacActivationPolicy::accessory},
                                                            {"prohibited", MacActivationPolicy::prohibited}};
  const auto rows = parseJson(kovi::testing::testDataFile("holds_agent", "front-apps.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 13) << "front-apps.json";
  for (const nlohmann::json& front : *rows) {
    SCOPED_TRACE(front.at("name").get<std::string>());
    GuardFixture fixture;
    fixture.hold({enumFromName<Kind>(front.at("due").get<std::string>()).value(), kStudyEnd},
                 front.at("keepCommunication").get<bool>());
    const pid_t pid = fixture.frontApp(front.at("app").get<std::string>(), "Some App",
                                       policies.at(front.at("policy").get<std::string>()));
    const bool hidden = front.at("hidden").get<bool>();
    EXPECT_EQ(fixture.agent.workspace.hidden == std::vector<pid_t>{pid}, hidden);
    EXPECT_EQ(fixture.guardian->isShieldVisible(), hidden);
    if (hidden) {
      EXPECT_EQ(fixture.guardian->shieldAppName(), "Some App");
    }
  }
}

class MacHoldsGuard : public ::testing::Test, public GuardFixture {};

TEST_F(MacHoldsGuard, HeldAppAlreadyInFrontIsHiddenWhenTheHoldStarts) {
  const pid_t discord = agent.workspace.launchInFront("com.hnc.Discord", "Discord");
  hold(MacHoldsDue::sleep(kStudyEnd));

  EXPECT_EQ(agent.workspace.hidden, std::vector<pid_t>{discord});
  EXPECT_TRUE(guardian->isShieldVisible());
  EXPECT_EQ(agent.log, std::vector<std::string>{"hold sleep until 12:50 — hid Discord"});
}

TEST_F(MacHoldsGuard, ApplicationThatRefusesToHideGetsNoShield) {
  hold(MacHoldsDue::social(kStudyEnd));
  const pid_t stubborn = agent.workspace.launch("com.hnc.Discord", "Discord");
  agent.workspace.refusesToHide.insert(stubborn);
  agent.workspace.activate(stubborn);

  EXPECT_TRUE(agent.workspace.hidden.empty());
  EXPECT_FALSE(guardian->isShieldVisible());
  EXPECT_EQ(agent.shield->created, 0);
  EXPECT_EQ(agent.log, std::vector<std::string>{"hold social until 12:50 — Discord did not hide; left alone"});
}

TEST_F(MacHoldsGuard, SparedAppHidesTheShieldAndSwitchingBackShowsItAgain) {
  hold(MacHoldsDue::sleep(kStudyEnd));
  const pid_t discord = frontApp("com.hnc.Discord", "Discord");
  ASSERT_TRUE(guardian->isShieldVisible());

  frontApp("com.apple.finder", "Finder");
  EXPECT_FALSE(guardian->isShieldVisible());

  agent.workspace.activate(discord);
  EXPECT_TRUE(guardian->isShieldVisible());
  EXPECT_EQ(agent.workspace.hidden, (std::vector<pid_t>{discord, discord}));
  // One panel, ordered in and out.
  EXPECT_EQ(agent.shield->created, 1);
}

TEST_F(MacHoldsGuard, RepeatedPlanDisturbsNothingAndAMovedPlanRechecksTheFront) {
  agent.workspace.launchInFront("com.hnc.Discord", "Discord");
  hold(MacHoldsDue::sleep(kStudyEnd));
  ASSERT_EQ(agent.workspace.hidden.size(), 1u);
  const int updates = agent.shield->contentUpdates;

  hold(MacHoldsDue::sleep(kStudyEnd));
  hold(MacHoldsDue::sleep(kStudyEnd));
  EXPECT_EQ(agent.workspace.hidden.size(), 1u);
  EXPECT_EQ(agent.shield->contentUpdates, updates);
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didActivateApplication), 1u);

  // A new end makes a new run: the visible shield is refreshed and the front re-checked.
  const MacHoldsDue later = MacHoldsDue::sleep(kStudyEnd.addingMillis(3'600'000));
  hold(later);
  EXPECT_EQ(agent.workspace.hidden.size(), 2u);
  ASSERT_TRUE(agent.shield->content);
  EXPECT_EQ(agent.shield->content->due, later);
}

TEST_F(MacHoldsGuard, StopRemovesTheObserverThePlanAndTheShield) {
  hold(MacHoldsDue::sleep(kStudyEnd));
  const pid_t discord = frontApp("com.hnc.Discord", "Discord");
  ASSERT_TRUE(guardian->isShieldVisible());

  guardian->stop();
  EXPECT_FALSE(guardian->isShieldVisible());
  EXPECT_FALSE(guardian->plan());
  EXPECT_EQ(guardian->due(), MacHoldsDue::none());
  EXPECT_EQ(agent.workspace.observerCount(MacWorkspaceEvent::didActivateApplication), 0u);

  agent.workspace.activate(discord);
  EXPECT_EQ(agent.workspace.hidden.size(), 1u);
}

TEST_F(MacHoldsGuard, ShieldButtonsHideTheShieldAndOpenKoviOpensTheMainApp) {
  hold(MacHoldsDue::social(kStudyEnd));
  const pid_t discord = frontApp("com.hnc.Discord", "Discord");
  ASSERT_TRUE(agent.shield->content);
  const auto buttons = agent.shield->content->buttons();

  buttons[1].action();  // Back to focus
  EXPECT_FALSE(guardian->isShieldVisible());
  EXPECT_EQ(agent.workspace.openMainAppCount, 0);
  // The held application stays hidden: nothing un-hides it.
  EXPECT_EQ(agent.workspace.hidden, std::vector<pid_t>{discord});

  agent.workspace.activate(discord);
  ASSERT_TRUE(guardian->isShieldVisible());
  agent.shield->content->buttons()[0].action();  // Open Kovi
  EXPECT_FALSE(guardian->isShieldVisible());
  EXPECT_EQ(agent.workspace.openMainAppCount, 1);

  // A button of a guard that is gone does nothing.
  guardian.reset();
  buttons[0].action();
  EXPECT_EQ(agent.workspace.openMainAppCount, 1);
}

}  // namespace
}  // namespace kovi::holds::testing
