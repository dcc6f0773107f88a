#include <gtest/gtest.h>

#include <set>
#include <string>

#include "KoviMacHolds/MacHoldsSchedule.h"
#include "tests/holds/HoldsTestSnapshots.h"

namespace kovi::holds {
namespace {

using namespace testing;
using Kind = MacHoldsDue::Kind;

struct PlanCase {
  const char* name;
  MacHoldsDue due;
  bool keepCommunication;
  const char* runID;
  PurrlFocusModeID mode;  // the preset row the lists come from
  bool allowlist;
  bool examWeek;
  bool withCommunication;  // the communication set is in bundleIDs
};

void expectTakesItsListsFromThePresetRow(const PlanCase& c) {
  SCOPED_TRACE(c.name);
  const auto plan = MacHoldsSchedule::plan(c.due, c.keepCommunication, "2026-11-22");
  ASSERT_TRUE(plan.has_value());
  EXPECT_EQ(plan->runID, c.runID);
  EXPECT_EQ(plan->mode, c.mode);
  EXPECT_EQ(plan->allowlist, c.allowlist);
  EXPECT_EQ(plan->examWeek, c.examWeek);
  EXPECT_EQ(plan->until, c.due.until->unixMillis());

  const PurrlFocusModeSpec& row = purrlFocusModeSpec(c.mode);
  EXPECT_EQ(plan->domains, row.blockedDomains);
  // Nothing but the row's applications and, where due, the communication set.
  std::set<std::string> expected(row.macBundleIDs.begin(), row.macBundleIDs.end());
  for (const std::string_view id : kMacHoldsCommunicationBundleIDs) {
    if (c.withCommunication) expected.emplace(id);
  }
  EXPECT_EQ(plan->bundleIDs, expected);
}

const Date until = Date::fromUnixMillis(1'795'336'200'000.0);

TEST(PlanTest, TakesItsListsFromThePresetRow) {
  for (const PlanCase& c : {
        PlanCase{"StudyKeepsCommunication", MacHoldsDue::study(until), true, "holds-study:1795336200000",
                 PurrlFocusModeID::study, true, false, true},
        PlanCase{"StudyWithoutCommunication", MacHoldsDue::study(until), false, "holds-study:1795336200000",
                 PurrlFocusModeID::study, true, false, false},
        // The sleep row is a block list: sparing communication means not adding it.
        PlanCase{"SleepIsABlockList", MacHoldsDue::sleep(until), true, "holds-sleep:1795336200000",
                 PurrlFocusModeID::sleep, false, false, false},
        // The Social hold reuses row id 7 and names the day, never the instant.
        PlanCase{"SocialReusesRowSeven", MacHoldsDue::social(until), true, "exam-week-social:2026-11-22",
                 PurrlFocusModeID::gym, false, true, false}})
    expectTakesItsListsFromThePresetRow(c);
}

TEST(Plan, NothingIsHeldWhileSocialIsOpenOrNothingIsDue) {
  EXPECT_FALSE(MacHoldsSchedule::plan(MacHoldsDue::socialOpen(until), true, "2026-11-22").has_value());
  EXPECT_FALSE(MacHoldsSchedule::plan(MacHoldsDue::none(), true, "2026-11-22").has_value());
}

TEST(Plan, UntilIsTruncatedToWholeMilliseconds) {
  const auto plan = MacHoldsSchedule::plan(MacHoldsDue::study(Date::fromUnixMillis(1000.75)), false, "2026-11-22");
  ASSERT_TRUE(plan.has_value());
  EXPECT_EQ(plan->until, 1000);
  EXPECT_EQ(plan->runID, "holds-study:1000");
}

}  // namespace
}  // namespace kovi::holds
