#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/attest/AppAttestKeyStore.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/V6DeviceKeyRegistrar.h"
#include "KoviKit/evidence/V6RequestId.h"
#include "KoviKit/evidence/V6WalkingEvidenceSubmitter.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/Time.h"
#include "tests/support/TemporaryDirectory.h"

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

inline constexpr const char* kApp = "TEAM.app.kovi";
inline constexpr const char* kOwner = "actor-1";

// One device: its keys, key records and pending store in a directory of its own.
struct Device {
  explicit Device(const NativeServiceOrigin& origin)
      : keys(directory.path(), kApp), pending(directory.path()), api(origin, "token-1") {}

  AppAttestDeviceKey registerKey() {
    V6DeviceKeyRegistrar registrar(api, keys, keyStore, newV6RequestId, kApp, AppAttestEnvironment::development);
    auto key = registrar.registerKey(kOwner);
    EXPECT_TRUE(key.has_value()) << (key ? "" : key.error().code + ": " + key.error().detail);
    return key.value_or(AppAttestDeviceKey{});
  }

  // Submits `days`, each read in full with `steps` a bucket, a minute after the kovi's last day.
  std::expected<V6WalkingEvidenceSubmitter::Outcome, V6EvidenceSubmissionError> submit(
      const AppAttestDeviceKey& key, std::vector<int> days, double steps = 300) {
    V6WalkingEvidenceSubmitter submitter(
        {api, keys, pending, [] { return EvidenceFixture::kCutoff + 60'000; }, newV6RequestId}, kApp,
        AppAttestEnvironment::development);
    return submitter.submit(key, kOwner, EvidenceFixture::kReference, EvidenceFixture::reads(std::move(days), steps),
                            EvidenceFixture::kCutoff);
  }

  TemporaryDirectory directory;
  SoftwareDeviceKeyService keys;
  AppAttestMemoryKeyStore keyStore;
  V6EvidencePendingStore pending;
  V6WalkingEvidenceAPI api;
};

}  // namespace kovi::testing
