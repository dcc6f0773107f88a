#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingDayWindowPlanner.h"
#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"
#include "KoviKit/evidence/WalkingRaceRanking.h"
#include "KoviKit/foundation/Json.h"
#include "WalkingTestSupport.h"

namespace kovi {
namespace {

using testing::at;
using testing::kBucket;
using testing::kHour;
using Rules = WalkingKoviRules;

const UnixMillis kStart = at("2026-05-04T08:00:00Z");
constexpr UnixMillis kDay = 24 * kHour;

// An instant `cells` buckets into day `day`.
UnixMillis inDay(int day, std::int64_t cells) { return kStart + day * kDay + cells * kBucket; }

// A three-day daily goal's rules with `patch` merged in (null drops a key).
Rules rulesWith(const nlohmann::json& patch) {
  auto document = nlohmann::json::parse(testing::dailyGoal(3, 0).canonicalJson());
  document.merge_patch(patch);
  const auto rules = JsonView(document).as<Rules>();
  EXPECT_TRUE(rules.has_value()) << document.dump();
  return rules.value_or(Rules{});
}

// `reads` as [day, [[cell, steps], …], outcome (else measured)] sanitized at `now` and evaluated.
WalkingEvidenceEvaluation evaluate(const Rules& rules, const nlohmann::json& reads, UnixMillis now) {
  const auto windows = WalkingDayWindowPlanner::plan(rules, kStart).value();
  std::vector<WalkingEvidenceBuckets::SanitizedDay> days;
  for (const auto& read : reads) {
    const int day = read[0];
    std::vector<HealthEvidenceBucket> buckets;
    for (const auto& cell : read[1]) buckets.push_back(testing::bucketAt(inDay(day, 0), cell[0], cell[1]));
    const auto outcome = read.size() > 2 ? enumFromName<HealthEvidenceReadOutcome>(read[2].get<std::string>())
                                         : HealthEvidenceReadOutcome::measured;
    days.push_back(WalkingEvidenceBuckets::sanitize(windows[day], outcome.value(), buckets, now).value());
  }
  return WalkingEvidenceEvaluation::evaluate(rules, windows, days, now);
}

// evaluations.json: per case a rules patch, the reads, `now` as [day, buckets into it, extra milliseconds] (the
// last day ends at [3, 0]; verification closes 24 hours later), and the expected verdict, closed total,
// successful days, missing, provisional and upcoming days, and when and on which day the target was reached.
TEST(WalkingEvidenceEvaluation, JudgesOnClosedTotals) {
  using Result = std::tuple<std::string, double, int, std::vector<int>, std::vector<int>, std::vector<int>,
                            std::optional<UnixMillis>, std::optional<int>, UnixMillis>;
  for (const auto& example : nlohmann::json::parse(testing::evidenceData("evaluations.json"))) {
    SCOPED_TRACE(example["name"].get<std::string>());
    const auto& now = example["now"];
    const auto e = evaluate(rulesWith(example["rules"]), example["reads"],
                            inDay(now[0], now[1]) + (now.size() > 2 ? now[2].get<UnixMillis>() : 0));
    const auto& x = example["expect"];
    const auto reachedAt = x[6].is_null() ? std::nullopt : std::optional(inDay(x[6][0], x[6][1]));
    const auto reachedDay = x[7].is_null() ? std::nullopt : std::optional(x[7].get<int>());
    EXPECT_EQ(Result(enumName(e.verdict), e.closedTotal, e.successfulDays, e.missingDays, e.provisionalDays,
                     e.upcomingDays, e.reachedAt, e.reachedDay, e.evidenceClosesAt),
              Result(x[0], x[1], x[2], x[3], x[4], x[5], reachedAt, reachedDay,
                     inDay(3, 0) + 24 * kHour));
  }
}

TEST(WalkingRaceRanking, OrdersMembersAndSharesTies) {
  const Rules kFirst =
      rulesWith({{"mode", "race"}, {"goalMode", nullptr}, {"raceMode", "firstToTarget"}, {"stepTarget", 1500}});
  const Rules kHighest = rulesWith({{"mode", "race"}, {"goalMode", nullptr}, {"raceMode", "highestTotal"},
                                    {"stepTarget", nullptr}, {"minimumEligibility", 1000}});
  auto reached = [](std::optional<UnixMillis> at) {
    WalkingEvidenceEvaluation evaluation;
    evaluation.reachedAt = at;
    return evaluation;
  };
  auto total = [](double steps) {
    WalkingEvidenceEvaluation evaluation;
    evaluation.closedTotal = steps;
    return evaluation;
  };
  struct Case {
    std::string name; Rules rules; std::vector<WalkingRaceEntrant> entrants; std::vector<WalkingRaceStanding> standings;
  };
  const std::vector<Case> cases{
      {"firstToTargetEarlierFirst",
       kFirst,
       {{"cem", reached(300)}, {"ayşe", reached(100)}, {"bora", reached({})}, {"deniz", reached(100)}},
       {{"ayşe", 1}, {"deniz", 1}, {"cem", 3}, {"bora", {}}}},
      {"highestTotalLargerFirstAndMinimum",
       kHighest,
       {{"a", total(5000)}, {"b", total(999)}, {"c", total(7000)}, {"d", total(5000)}, {"e", total(1000)}},
       {{"c", 1}, {"a", 2}, {"d", 2}, {"e", 4}, {"b", {}}}},
      {"goalRanksNobody", rulesWith({{"stepTarget", 1000}}), {{"a", total(5000)}, {"b", total(10)}}, {{"a", {}}, {"b", {}}}},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.name);
    EXPECT_EQ(rankWalkingRace(example.rules, example.entrants), example.standings);
  }
}

}  // namespace
}  // namespace kovi
