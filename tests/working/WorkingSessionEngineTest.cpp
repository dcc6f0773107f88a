#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/working/WorkingSessionCoding.h"
#include "KoviKit/working/WorkingSessionEngine.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "KoviKit/working/WorkingSessionStatus.h"
#include "tests/working/WorkingSessionTestSupport.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using namespace kovi::testing;
using Type = WorkingSessionEvent::Type;
using Reason = WorkingSuspensionReason;
using ErrorKind = WorkingSessionError::Kind;

WorkingSessionEngine run(const WorkingSessionPolicy& policy, const std::vector<WorkingSessionEvent>& events) {
  WorkingSessionEngine engine = sessionEngine(policy);
  for (const auto& event : events) {
    const auto outcome = engine.observe(event);
    EXPECT_TRUE(outcome.has_value()) << enumName(event.type) << " at " << event.at << ": "
                                     << enumName(outcome.error().kind);
  }
  return engine;
}

// The rows of one table in session-scenarios.json. Each row's `policy` keys
// are merged into the test policy; its `events` are coded as in a replay file.
nlohmann::json scenarioTable(const char* table) {
  return nlohmann::json::parse(workingDataFile("session-scenarios.json")).at(table);
}

struct ScenarioRow {
  WorkingSessionPolicy policy;
  std::vector<WorkingSessionEvent> events;
};

ScenarioRow scenarioRow(const nlohmann::json& row) {
  nlohmann::json policyJson = encodeRecord(sessionTestPolicy());
  policyJson.merge_patch(row.at("policy"));
  const auto policy = decodeRecord<WorkingSessionPolicy>(JsonView(policyJson, "policy"));
  const auto events = decodeWorkingSessionEvents(JsonView(row.at("events"), "events"));
  EXPECT_TRUE(policy.has_value()) << policy.error().message();
  EXPECT_TRUE(events.has_value()) << events.error().message();
  if (!policy || !events) return {sessionTestPolicy(), {}};
  return {*policy, *events};
}

// The engine after the row's events, under the row's policy.
WorkingSessionEngine runScenario(const nlohmann::json& row) {
  const ScenarioRow scenario = scenarioRow(row);
  return run(scenario.policy, scenario.events);
}

TEST(WorkingSessionEngineTest, ClassifiesTimeByTheRulesOfEachState) {
  const auto scenarios = scenarioTable("timeClassification");
  ASSERT_EQ(scenarios.size(), 19U);
  for (const auto& scenario : scenarios) {
    SCOPED_TRACE(scenario.at("name").get<std::string>());
    const WorkingSessionSnapshot snapshot = runScenario(scenario).snapshot();
    EXPECT_EQ(enumName(snapshot.state), scenario.at("state").get<std::string>());
    EXPECT_EQ(snapshot.suspensionReason ? nlohmann::json(enumName(*snapshot.suspensionReason)) : nlohmann::json(),
              scenario.at("reason"));
    const nlohmann::json totals{{"active", snapshot.candidateActiveMS - snapshot.provisionalMS},
                                {"provisional", snapshot.provisionalMS}, {"idle", snapshot.idleMS},
                                {"breaks", snapshot.breakMS}, {"unverified", snapshot.unverifiedMS},
                                {"violation", snapshot.violationMS}};
    EXPECT_EQ(totals, scenario.at("totals"));
    const auto& events = scenario.at("events");
    EXPECT_EQ(snapshot.elapsedMS, events.back().at("at").get<UnixMillis>() - events.front().at("at").get<UnixMillis>());
  }
}

// Each refusal row ends with the event the engine must refuse.
TEST(WorkingSessionEngineTest, RefusesWhatTheLifecycleAndClockDoNotAllow) {
  const auto refusals = scenarioTable("refusals");
  ASSERT_EQ(refusals.size(), 11U);
  for (const auto& refusal : refusals) {
    SCOPED_TRACE(refusal.at("name").get<std::string>());
    ScenarioRow scenario = scenarioRow(refusal);
    ASSERT_FALSE(scenario.events.empty());
    const WorkingSessionEvent refused = scenario.events.back();
    scenario.events.pop_back();
    WorkingSessionEngine engine = run(scenario.policy, scenario.events);
    const WorkingSessionEngine before = engine;
    const auto outcome = engine.observe(refused);
    ASSERT_FALSE(outcome.has_value());
    nlohmann::json reasons = nlohmann::json::array();
    for (const Reason reason : outcome.error().reasons) reasons.push_back(enumName(reason));
    EXPECT_EQ((nlohmann::json{{"kind", enumName(outcome.error().kind)}, {"reasons", reasons}}), refusal.at("error"));
    if (refusal.at("leavesEngineUnchanged").get<bool>()) {
      EXPECT_EQ(engine, before);
    }
  }
}

TEST(WorkingSessionEngineTest, RefusesInvalidIdentifiersAndPolicies) {
  EXPECT_EQ(WorkingSessionEngine::make("", "mac-1", sessionTestPolicy()).error().kind, ErrorKind::invalidIdentifier);
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac 1", sessionTestPolicy()).error().kind, ErrorKind::invalidIdentifier);
  WorkingSessionPolicy noIdle = sessionTestPolicy();
  noIdle.idleThresholdMS.reset();
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac-1", noIdle).error().kind, ErrorKind::invalidPolicy);
  noIdle.allowsIdleDisabled = true;
  EXPECT_TRUE(WorkingSessionEngine::make("s1", "mac-1", noIdle).has_value());
  WorkingSessionPolicy zeroDebounce = sessionTestPolicy();
  zeroDebounce.resumeDebounceMS = 0;
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac-1", zeroDebounce).error().kind, ErrorKind::invalidPolicy);
}

TEST(WorkingSessionEngineTest, ReportsThePomodoroPhaseRemainingTimeAndCycle) {
  WorkingSessionPolicy policy = sessionTestPolicy();
  policy.pomodoro = {{120'000, 60'000}};
  policy.pomodoroOffsetMS = 30'000;
  const struct {
    UnixMillis at;
    WorkingSessionSnapshot::PomodoroPhase phase;
    std::int64_t remaining;
    std::int64_t cycle;
  } cases[] = {
      // The shared cycle repeats backwards before its offset start.
      {0, WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak, 30'000, -1},
      {30'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroWork, 120'000, 0},
      {160'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak, 50'000, 0},
      {220'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroWork, 110'000, 1},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.at);
    WorkingSessionEngine engine = run(policy, {startEvent(0)});
    if (expected.at > 0) {
      ASSERT_TRUE(engine.observe(sessionEvent(expected.at, Type::activity)).has_value());
    }
    const auto snapshot = engine.snapshot();
    EXPECT_EQ(snapshot.pomodoroPhase, expected.phase);
    EXPECT_EQ(snapshot.pomodoroRemainingMS, expected.remaining);
    EXPECT_EQ(snapshot.pomodoroCycleIndex, expected.cycle);
  }
}

TEST(WorkingSessionEngineTest, ChoosesTheStatusLinesFromTheEngineState) {
  const auto cases = scenarioTable("statusLines");
  ASSERT_EQ(cases.size(), 10U);
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.at("name").get<std::string>());
    const WorkingSessionEngine engine = runScenario(expected);
    const auto status = workingSessionStatusLine(engine);
    EXPECT_EQ(status ? nlohmann::json(std::string(*status)) : nlohmann::json(), expected.at("status"));
    EXPECT_EQ(workingProtectionStatusLine(engine), expected.at("protection").get<std::string>());
  }
}

TEST(WorkingSessionEngineTest, ExplainsWhyTheCurrentTimeIsExcluded) {
  const auto cases = scenarioTable("exclusionReasons");
  ASSERT_EQ(cases.size(), 8U);
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.at("name").get<std::string>());
    const auto reason = workingExclusionReason(runScenario(expected));
    EXPECT_EQ(reason ? nlohmann::json(std::string(*reason)) : nlohmann::json(), expected.at("reason"));
  }
}

}  // namespace
}  // namespace kovi
