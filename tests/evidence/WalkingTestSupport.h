#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/HealthStepSample.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/Time.h"
#include "tests/support/TestData.h"

namespace kovi::testing {

// A file of tests/evidence/data, whole; fails the test when it is missing.
inline std::string evidenceData(std::string_view name) { return testDataFile("evidence", name); }

// An ISO 8601 instant with offset as Unix milliseconds; fails the test on a typo.
inline UnixMillis at(std::string_view iso) {
  const auto parsed = parseInstant(iso);
  EXPECT_TRUE(parsed.has_value()) << "bad instant in test: " << iso;
  return parsed.value_or(0);
}

inline constexpr UnixMillis kMinute = 60'000;
inline constexpr UnixMillis kHour = 60 * kMinute;
inline constexpr UnixMillis kBucket = 15 * kMinute;

// A closed 15-minute bucket `index` cells after `dayStart` with `amount` steps.
inline HealthEvidenceBucket bucketAt(UnixMillis dayStart, int index, double amount) {
  const double start = static_cast<double>(dayStart + index * kBucket);
  return {Date::fromUnixMillis(start), Date::fromUnixMillis(start + static_cast<double>(kBucket)), amount, false};
}

inline WalkingKoviRules dailyGoal(int days, std::int64_t target) {
  WalkingKoviRules rules;
  rules.mode = WalkingKoviRules::Mode::goal;
  rules.goalMode = WalkingKoviRules::GoalMode::daily;
  rules.durationDays = days;
  rules.stepTarget = target;
  rules.verificationWindowHours = 24;
  return rules;
}

// A store that hands out fixed samples or a fixed failure, and records the
// interval it was asked for.
class FixedStore final : public HealthEvidenceStore {
 public:
  std::expected<std::vector<HealthStepSample>, std::string> answer;
  std::vector<std::pair<UnixMillis, UnixMillis>> asked;
  HealthEvidenceAuthorization authorization() const override { return HealthEvidenceAuthorization::unknown; }
  std::expected<std::vector<HealthStepSample>, std::string> stepSamples(UnixMillis from, UnixMillis to) override {
    asked.emplace_back(from, to);
    return answer;
  }
};

}  // namespace kovi::testing
