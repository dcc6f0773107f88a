#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingDayWindowVerifier.h"
#include "KoviKit/foundation/Json.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using Boundary = WalkingDayBoundary;
using Verdict = WalkingDayWindowReview::Verdict;

// day-windows.json: rows of a patch to a daily goal's rules, the start, and the
// edges of the days the rules describe (day n runs from edges[n] to edges[n + 1]).
// Anchored days are 24 hours even across a daylight-saving change; calendar days follow the zone.
TEST(WalkingDayWindowPlanner, CutsTheDaysTheRulesDescribe) {
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("day-windows.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto edges = example["edges"].get<std::vector<std::string>>();
    auto document = nlohmann::json::parse(testing::dailyGoal(static_cast<int>(edges.size()) - 1, 10000).canonicalJson());
    document.merge_patch(example["patch"]);
    const auto rules = JsonView(document).as<WalkingKoviRules>();
    ASSERT_TRUE(rules.has_value()) << rules.error().message();
    std::vector<HealthEvidenceDayWindow> expected;
    for (std::size_t day = 0; day + 1 < edges.size(); ++day) {
      expected.push_back({static_cast<int>(day), at(edges[day]), at(edges[day + 1])});
    }
    const auto windows = WalkingDayWindowPlanner::plan(*rules, at(example["start"].get<std::string>()));
    ASSERT_TRUE(windows.has_value()) << windows.error();
    EXPECT_EQ(*windows, expected);
  }
}

TEST(WalkingDayWindowPlanner, RefusesRulesThatCannotYieldWindows) {
  // unplannable-rules.json: the days and time zone of a calendar daily goal, and why no windows can be cut.
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("unplannable-rules.json"))) {
    SCOPED_TRACE(example.dump());
    WalkingKoviRules rules = testing::dailyGoal(example[0], 10000);
    rules.dayBoundary = Boundary::calendar;
    rules.timezone = example[1];
    const auto windows = WalkingDayWindowPlanner::plan(rules, at("2026-05-04T12:00:00Z"));
    ASSERT_FALSE(windows.has_value());
    EXPECT_EQ(windows.error(), example[2].get<std::string>());
  }
}

TEST(WalkingDayWindowVerifier, VerifiesDerivesOrListsEveryFault) {
  WalkingKoviRules rules = testing::dailyGoal(3, 10000);
  rules.dayBoundary = Boundary::calendar;
  rules.timezone = "Europe/Berlin";
  const UnixMillis start = at("2026-03-28T12:00:00+01:00");
  const auto expected = WalkingDayWindowPlanner::plan(rules, start).value();
  ASSERT_EQ(expected.size(), 3u);
  auto edited = [&](auto edit) {
    auto windows = expected;
    edit(windows);
    return std::optional(windows);
  };
  struct Case {
    std::string name; std::optional<std::vector<HealthEvidenceDayWindow>> server; Verdict verdict;
    std::vector<std::string> issues;
  };
  const std::vector<Case> cases{
      {"sameWindowsOtherOrder", edited([](auto& w) { std::swap(w[0], w[2]); }), Verdict::verified, {}},
      {"noServerWindows", std::nullopt, Verdict::derived, {}},
      // The server cut the spring-forward day as 24 hours.
      {"dayOneAnHourLong", edited([](auto& w) { w[1].end += testing::kHour; }), Verdict::mismatch,
       {"day 1: end " + std::to_string(expected[1].end + testing::kHour) + " differs from the expected " +
        std::to_string(expected[1].end)}},
      {"missingAndForeignDay", edited([](auto& w) { w[2].day = 7; }), Verdict::mismatch,
       {"day 2 is missing", "day 7 is not a day of this kovi"}},
      {"duplicateDay", edited([](auto& w) { w.push_back(w[0]); }), Verdict::mismatch, {"day 0 appears more than once"}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    const auto review = WalkingDayWindowVerifier::review(rules, start, example.server);
    const bool usable = example.verdict != Verdict::mismatch;
    EXPECT_EQ(std::tuple(review.verdict, review.issues, review.windows),
              std::tuple(example.verdict, example.issues, usable ? expected : std::vector<HealthEvidenceDayWindow>{}));
    const auto forEvidence = review.windowsForEvidence();
    EXPECT_EQ(forEvidence ? "" : forEvidence.error().code, usable ? "" : "walking_day_windows_invalid");
  }

  rules.timezone = "Mars/Olympus";
  const auto unavailable = WalkingDayWindowVerifier::review(rules, start, std::nullopt);
  EXPECT_EQ(unavailable.verdict, Verdict::unavailable);
  EXPECT_EQ(unavailable.issues, std::vector<std::string>{"unknown time zone \"Mars/Olympus\""});
}

TEST(WalkingDayWindowVerifier, NumbersTheRulesOwnWindowsByPosition) {
  WalkingKoviRules rules = testing::dailyGoal(2, 10000);
  rules.dayWindows = std::vector<WalkingDayWindow>{{10, 20}, {20, 35}};
  EXPECT_EQ(WalkingDayWindowVerifier::serverWindows(rules),
            (std::vector<HealthEvidenceDayWindow>{{0, 10, 20}, {1, 20, 35}}));
}

}  // namespace
}  // namespace kovi
