#pragma once

#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/Time.h"

namespace kovi::testing {

// A three-day anchored daily-goal kovi that began on 4 May 2026 at 08:00 UTC,
// with every day read in full: 24 closed buckets of `steps` each.
struct EvidenceFixture {
  static constexpr UnixMillis kStart = 1'777'881'600'000;  // 2026-05-04T08:00:00Z
  static constexpr UnixMillis kDay = 24 * 60 * 60 * 1000;
  static constexpr UnixMillis kBucket = 15 * 60 * 1000;
  static constexpr const char* kReference = "kovi-walk-1";

  static WalkingKoviRules rules() {
    WalkingKoviRules rules;
    rules.mode = WalkingKoviRules::Mode::goal;
    rules.goalMode = WalkingKoviRules::GoalMode::daily;
    rules.durationDays = 3;
    rules.stepTarget = 5000;
    rules.verificationWindowHours = 24;
    rules.dayBoundary = WalkingDayBoundary::anchored;
    return rules;
  }

  static std::vector<HealthEvidenceDayRead> reads(std::vector<int> days, double steps) {
    std::vector<HealthEvidenceDayRead> reads;
    for (const int day : days) {
      HealthEvidenceDayRead read{day, HealthEvidenceReadOutcome::measured, {}};
      for (int cell = 0; cell < 24; ++cell) {
        const auto start = static_cast<double>(kStart + day * kDay + cell * kBucket);
        read.buckets.push_back({Date::fromUnixMillis(start), Date::fromUnixMillis(start + kBucket), steps, false});
      }
      reads.push_back(std::move(read));
    }
    return reads;
  }

  // After the last day: every bucket is closed.
  static constexpr UnixMillis kCutoff = kStart + 3 * kDay;
};

}  // namespace kovi::testing
