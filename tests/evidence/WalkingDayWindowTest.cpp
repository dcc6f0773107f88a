#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingDayWindowVerifier.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using testing::kBucket;

struct WindowCase {
  std::string name;
  std::optional<WalkingDayBoundary> boundary;
  std::optional<WalkingKoviRules::FirstDay> firstDay;
  std::optional<std::string> timezone;
  std::string start;
  // Expected day edges: day n runs from edges[n] to edges[n + 1].
  std::vector<std::string> edges;
  // Expected 15-minute buckets per day.
  std::vector<int> buckets;
};

void PrintTo(const WindowCase& example, std::ostream* out) { *out << example.name; }

class WalkingDayWindowPlannerTest : public ::testing::TestWithParam<WindowCase> {};

TEST_P(WalkingDayWindowPlannerTest, CutsTheDaysTheRulesDescribe) {
  const WindowCase& example = GetParam();
  WalkingKoviRules rules = testing::dailyGoal(static_cast<int>(example.edges.size()) - 1, 10000);
  rules.dayBoundary = example.boundary;
  rules.firstDay = example.firstDay;
  rules.timezone = example.timezone;

  const auto windows = WalkingDayWindowPlanner::plan(rules, at(example.start));
  ASSERT_TRUE(windows.has_value()) << windows.error();
  std::vector<HealthEvidenceDayWindow> expected;
  for (std::size_t day = 0; day + 1 < example.edges.size(); ++day) {
    expected.push_back({static_cast<int>(day), at(example.edges[day]), at(example.edges[day + 1])});
  }
  EXPECT_EQ(*windows, expected);
  std::vector<int> buckets;
  for (const auto& window : *windows) buckets.push_back(static_cast<int>((window.end - window.start) / kBucket));
  EXPECT_EQ(buckets, example.buckets);
}

using Boundary = WalkingDayBoundary;
using FirstDay = WalkingKoviRules::FirstDay;

// Anchored days are 24 hours even across a daylight-saving change; calendar days follow the zone.
INSTANTIATE_TEST_SUITE_P(
    Windows, WalkingDayWindowPlannerTest,
    ::testing::Values(
        WindowCase{"anchoredAt1437", Boundary::anchored, {}, "Europe/Istanbul", "2026-05-04T14:37:00+03:00",
                   {"2026-05-04T14:37:00+03:00", "2026-05-05T14:37:00+03:00", "2026-05-06T14:37:00+03:00"}, {96, 96}},
        WindowCase{"anchoredAcrossBerlinSpring", {}, {}, "Europe/Berlin", "2026-03-28T14:37:00+01:00",
                   {"2026-03-28T14:37:00+01:00", "2026-03-29T15:37:00+02:00"}, {96}},
        WindowCase{"midnightStartedAt2350", Boundary::calendar, FirstDay::midnight, "Europe/Istanbul",
                   "2026-05-04T23:50:00+03:00", {"2026-05-05T00:00:00+03:00", "2026-05-06T00:00:00+03:00"}, {96}},
        WindowCase{"midnightStartedAtMidnight", Boundary::calendar, FirstDay::midnight, "Europe/Istanbul",
                   "2026-05-05T00:00:00+03:00", {"2026-05-05T00:00:00+03:00", "2026-05-06T00:00:00+03:00"}, {96}},
        WindowCase{"todayStartedAt2350", Boundary::calendar, FirstDay::today, "Europe/Istanbul",
                   "2026-05-04T23:50:00+03:00", {"2026-05-04T00:00:00+03:00", "2026-05-05T00:00:00+03:00"}, {96}},
        WindowCase{"calendarWithoutFirstDayCountsToday", Boundary::calendar, {}, "Europe/Istanbul",
                   "2026-05-04T09:15:00+03:00", {"2026-05-04T00:00:00+03:00", "2026-05-05T00:00:00+03:00"}, {96}},
        WindowCase{"berlinSpringForward", Boundary::calendar, FirstDay::today, "Europe/Berlin",
                   "2026-03-28T12:00:00+01:00",
                   {"2026-03-28T00:00:00+01:00", "2026-03-29T00:00:00+01:00", "2026-03-30T00:00:00+02:00",
                    "2026-03-31T00:00:00+02:00"},
                   {96, 92, 96}},
        WindowCase{"berlinFallBack", Boundary::calendar, FirstDay::midnight, "Europe/Berlin",
                   "2026-10-24T20:00:00+02:00", {"2026-10-25T00:00:00+02:00", "2026-10-26T00:00:00+01:00"}, {100}},
        WindowCase{"newYorkSpringForward", Boundary::calendar, FirstDay::today, "America/New_York",
                   "2026-03-08T08:00:00-04:00", {"2026-03-08T00:00:00-05:00", "2026-03-09T00:00:00-04:00"}, {92}},
        WindowCase{"newYorkFallBack", Boundary::calendar, FirstDay::midnight, "America/New_York",
                   "2026-10-31T23:50:00-04:00",
                   {"2026-11-01T00:00:00-04:00", "2026-11-02T00:00:00-05:00", "2026-11-03T00:00:00-05:00"}, {100, 96}}),
    [](const auto& info) { return info.param.name; });

TEST(WalkingDayWindowPlanner, RefusesRulesThatCannotYieldWindows) {
  struct Case {
    std::string name;
    int days;
    std::optional<std::string> timezone;
    std::string reason;
  };
  for (const Case& example : {Case{"noDays", 0, "Europe/Berlin", "durationDays must be at least 1"},
                              Case{"tooManyDays", 3661, "Europe/Berlin", "durationDays must be at most 3660"},
                              Case{"unknownZone", 3, "Europe/Atlantis", "unknown time zone \"Europe/Atlantis\""}}) {
    SCOPED_TRACE(example.name);
    WalkingKoviRules rules = testing::dailyGoal(example.days, 10000);
    rules.dayBoundary = WalkingDayBoundary::calendar;
    rules.timezone = example.timezone;
    const auto windows = WalkingDayWindowPlanner::plan(rules, at("2026-05-04T12:00:00Z"));
    ASSERT_FALSE(windows.has_value());
    EXPECT_EQ(windows.error(), example.reason);
  }
}

class WalkingDayWindowVerifierTest : public ::testing::Test {
 protected:
  WalkingDayWindowVerifierTest() {
    rules_.dayBoundary = WalkingDayBoundary::calendar;
    rules_.timezone = "Europe/Berlin";
  }

  std::vector<HealthEvidenceDayWindow> derived() const {
    return WalkingDayWindowPlanner::plan(rules_, start_).value_or(std::vector<HealthEvidenceDayWindow>{});
  }

  WalkingKoviRules rules_ = testing::dailyGoal(3, 10000);
  UnixMillis start_ = at("2026-03-28T12:00:00+01:00");
};

TEST_F(WalkingDayWindowVerifierTest, VerifiesDerivesOrListsEveryFault) {
  const auto expected = derived();
  ASSERT_EQ(expected.size(), 3u);
  const std::string dayOneEnd = std::to_string(expected[1].end);

  struct Case {
    std::string name;
    std::optional<std::vector<HealthEvidenceDayWindow>> server;
    WalkingDayWindowReview::Verdict verdict;
    std::vector<std::string> issues;
  };
  auto edited = [&](auto edit) {
    auto windows = expected;
    edit(windows);
    return std::optional(windows);
  };
  const std::vector<Case> cases{
      {"sameWindows", expected, WalkingDayWindowReview::Verdict::verified, {}},
      {"sameWindowsOtherOrder", edited([](auto& w) { std::swap(w[0], w[2]); }),
       WalkingDayWindowReview::Verdict::verified, {}},
      {"noServerWindows", std::nullopt, WalkingDayWindowReview::Verdict::derived, {}},
      // The server cut the spring-forward day as 24 hours.
      {"dayOneAnHourLong", edited([](auto& w) { w[1].end += testing::kHour; }),
       WalkingDayWindowReview::Verdict::mismatch,
       {"day 1: end " + std::to_string(expected[1].end + testing::kHour) + " differs from the expected " + dayOneEnd}},
      {"missingAndForeignDay", edited([](auto& w) { w[2].day = 7; }), WalkingDayWindowReview::Verdict::mismatch,
       {"day 2 is missing", "day 7 is not a day of this kovi"}},
      {"duplicateDay", edited([](auto& w) { w.push_back(w[0]); }), WalkingDayWindowReview::Verdict::mismatch,
       {"day 0 appears more than once"}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    const auto review = WalkingDayWindowVerifier::review(rules_, start_, example.server);
    EXPECT_EQ(review.verdict, example.verdict);
    EXPECT_EQ(review.issues, example.issues);
    const bool usable = example.verdict == WalkingDayWindowReview::Verdict::verified ||
                        example.verdict == WalkingDayWindowReview::Verdict::derived;
    EXPECT_EQ(review.windows, usable ? expected : std::vector<HealthEvidenceDayWindow>{});
    const auto forEvidence = review.windowsForEvidence();
    EXPECT_EQ(forEvidence.has_value(), usable);
    if (!forEvidence) {
      EXPECT_EQ(forEvidence.error().code, "walking_day_windows_invalid");
    }
  }
}

TEST_F(WalkingDayWindowVerifierTest, RulesWithoutWindowsAreUnavailable) {
  rules_.timezone = "Mars/Olympus";
  const auto review = WalkingDayWindowVerifier::review(rules_, start_, std::nullopt);
  EXPECT_EQ(review.verdict, WalkingDayWindowReview::Verdict::unavailable);
  EXPECT_EQ(review.issues, std::vector<std::string>{"unknown time zone \"Mars/Olympus\""});
}

TEST_F(WalkingDayWindowVerifierTest, NumbersTheRulesOwnWindowsByPosition) {
  rules_.dayWindows = std::vector<WalkingDayWindow>{{10, 20}, {20, 35}};
  const auto windows = WalkingDayWindowVerifier::serverWindows(rules_);
  ASSERT_TRUE(windows.has_value());
  EXPECT_EQ(*windows, (std::vector<HealthEvidenceDayWindow>{{0, 10, 20}, {1, 20, 35}}));
}

}  // namespace
}  // namespace kovi
