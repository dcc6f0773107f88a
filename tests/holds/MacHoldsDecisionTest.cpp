#include "KoviMacHolds/MacHoldsDecision.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/holds/HoldsTestSnapshots.h"

namespace kovi::holds {
namespace {

using namespace testing;
using ActionKind = MacHoldsAction::Kind;

MacHoldsSnapshotLoad noSnapshot(MacHoldsSnapshotFailure::Kind kind) {
  return std::unexpected(MacHoldsSnapshotFailure{kind, "test"});
}

struct DecisionCase {
  const char* name;
  MacHoldsSnapshotLoad snapshot;
  const char* now;
  bool mainAppRunning;
  ActionKind action;
  MacHoldsDue due;
};

void expectDecidesAsTheEngine(const DecisionCase& c) {
  SCOPED_TRACE(c.name);
  const Calendar calendar = calendarIn("Europe/Istanbul");
  const MacHoldsEvaluation evaluation = evaluateMacHolds(c.snapshot, at(c.now), calendar, c.mainAppRunning);
  EXPECT_EQ(enumName(evaluation.action.kind()), enumName(c.action));
  EXPECT_EQ(evaluation.due, c.due);
  EXPECT_EQ(decideMacHoldsAction(c.snapshot, at(c.now), calendar, c.mainAppRunning), evaluation.action);
  // A hold carries the due hold and exactly the plan the schedule makes for it.
  ASSERT_EQ(evaluation.action.held().has_value(), c.action == ActionKind::hold);
  if (const auto& held = evaluation.action.held()) {
    EXPECT_EQ(held->due, evaluation.due);
    EXPECT_EQ(held->plan, MacHoldsSchedule::plan(evaluation.due, c.snapshot->keepCommunication,
                                                 calendar.dayString(at(c.now))));
  }
}

TEST(DecisionTest, DecidesAsTheEngine) {
  for (const DecisionCase& c : {
        DecisionCase{"MissingFileExits", noSnapshot(MacHoldsSnapshotFailure::Kind::missing),
                     "2026-11-22T10:00:00+03:00", false, ActionKind::exit, MacHoldsDue::none()},
        DecisionCase{"StudyBlockHolds", examWeekSnapshot(), "2026-11-22T10:00:00+03:00", false, ActionKind::hold,
                     MacHoldsDue::study(at("2026-11-22T11:30:00+03:00"))},
        DecisionCase{"MainAppRunningStandsBy", examWeekSnapshot(), "2026-11-22T10:00:00+03:00", true,
                     ActionKind::standBy, MacHoldsDue::study(at("2026-11-22T11:30:00+03:00"))},
        DecisionCase{"SocialHoldHolds", examWeekSnapshot(), "2026-11-22T12:00:00+03:00", false, ActionKind::hold,
                     MacHoldsDue::social(at("2026-11-23T00:00:00+03:00"))},
        DecisionCase{"OpenSocialSpanStandsBy",
                     withAllowance(examWeekSnapshot(), "2026-11-22", 0, "2026-11-22T11:55:00+03:00"),
                     "2026-11-22T12:00:00+03:00", false, ActionKind::standBy,
                     MacHoldsDue::socialOpen(at("2026-11-22T12:40:00+03:00"))},
        DecisionCase{"EverydaySleepAtNoonStandsBy", sleepSnapshot(1380, 420), "2026-11-22T12:00:00+03:00", false,
                     ActionKind::standBy, MacHoldsDue::none()},
        // After the exam week the agent exits, even while the main app runs.
        DecisionCase{"ExitsEvenWhileTheMainAppRuns", examWeekSnapshot(), "2026-11-27T08:00:00+03:00", true,
                     ActionKind::exit, MacHoldsDue::none()}})
    expectDecidesAsTheEngine(c);
}

}  // namespace
}  // namespace kovi::holds
