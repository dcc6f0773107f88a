#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/native/NativeServiceClient.h"
#include "KoviKit/purrl/PurrlCatGrowth.h"
#include "KoviKit/purrl/PurrlErrorTable.h"
#include "KoviKit/purrl/PurrlFocusDailySet.h"
#include "KoviKit/purrl/PurrlFocusExamCountdown.h"
#include "KoviKit/purrl/PurrlFocusMockCalendar.h"
#include "KoviKit/purrl/PurrlFocusStudyStats.h"

namespace kovi {

// The header every purrl request carries, naming what this client can show
// so the service leaves out what it cannot: cat growth with its rewards and
// the study side of focus runs (statistics, daily sets, countdowns, the mock
// calendar). Tokens are comma-separated; a newer client adds its own.
inline constexpr std::string_view kPurrlFeaturesHeader = "X-Purrl-Features";
inline constexpr std::string_view kPurrlFeatures = "cat-growth,study-stats,daily-sets,exam-countdowns,mock-calendar";

// The purrl area's client, rooted at origin + "/api/native/purrl". The study
// endpoints live under "focus/". Failures are the transport's
// `NativeAccountError`s, worded from `kPurrlErrorTable`.
class PurrlAPI : public NativeServiceClient {
 public:
  template <class T>
  using Result = std::expected<T, NativeAccountError>;

  explicit PurrlAPI(const NativeServiceOrigin& origin, NativeClientOptions options = {});

  // GET cat: the person's cat with its mood and growth.
  Result<PurrlCatState> cat(std::optional<std::string> token);
  // GET focus/stats: the study statistics.
  Result<PurrlFocusStudyStats> studyStats(std::optional<std::string> token);
  // GET focus/daily-sets: today's daily sets.
  Result<PurrlFocusDailySets> dailySets(std::optional<std::string> token);
  // POST focus/daily-sets {"items": [targets]}: replaces today's targets and
  // answers with the day's sets.
  Result<PurrlFocusDailySets> setDailySets(const std::vector<PurrlFocusDailySetTarget>& targets,
                                           std::optional<std::string> token);
  // GET focus/countdowns: {"countdowns": [...]}, the exams the person counts down to.
  Result<std::vector<PurrlFocusExamCountdown>> countdowns(std::optional<std::string> token);
  // GET focus/mocks: the mock-exam calendar.
  Result<PurrlFocusMockCalendar> mockCalendar(std::optional<std::string> token);
};

}  // namespace kovi
