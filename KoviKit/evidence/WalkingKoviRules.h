#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// How kovi days are cut out of time: from the start instant in 24-hour steps,
// or along the calendar days of a time zone.
enum class WalkingDayBoundary { anchored, calendar };

// A day window fixed by the server: [start, end) in Unix milliseconds.
struct WalkingDayWindow {
  UnixMillis start = 0;
  UnixMillis end = 0;
  bool operator==(const WalkingDayWindow&) const = default;
};

// The consented, immutable rules of a walking kovi. The fields are in the
// declared order, which is also the order of the canonical JSON that
// `rulesHash()` hashes; the service identifies a rule set by that hash.
struct WalkingKoviRules {
  enum class Mode { goal, race };
  enum class GoalMode { daily, total };
  enum class RaceMode { highestTotal, firstToTarget };
  enum class FailurePolicy { refund, closestWins, rollover };
  enum class PayoutRule { equalSuccessful, ranked };
  enum class FirstDay { today, midnight };

  Mode mode = Mode::goal;
  std::optional<GoalMode> goalMode;
  std::optional<RaceMode> raceMode;
  int durationDays = 0;
  std::optional<std::int64_t> stepTarget;
  std::optional<int> requiredSuccessfulDays;
  std::optional<std::int64_t> minimumEligibility;
  std::optional<FailurePolicy> failurePolicy;
  int exitPenaltyBps = 0;
  PayoutRule payoutRule = PayoutRule::equalSuccessful;
  std::vector<int> rankPayoutsBps;
  int verificationWindowHours = 0;
  std::optional<WalkingDayBoundary> dayBoundary;
  std::optional<std::string> timezone;
  std::optional<std::vector<WalkingDayWindow>> dayWindows;
  std::optional<FirstDay> firstDay;

  bool operator==(const WalkingKoviRules&) const = default;

  bool isDailyGoal() const { return mode == Mode::goal && goalMode == GoalMode::daily; }
  bool isTotalGoal() const { return mode == Mode::goal && goalMode == GoalMode::total; }
  bool isRace(RaceMode kind) const { return mode == Mode::race && raceMode == kind; }

  // A rule set without a boundary counts its days from the start instant.
  WalkingDayBoundary effectiveDayBoundary() const { return dayBoundary.value_or(WalkingDayBoundary::anchored); }
  // A calendar rule set without `firstDay` counts the whole first day.
  FirstDay effectiveFirstDay() const { return firstDay.value_or(FirstDay::today); }

  // The rules as canonical JSON (see the writer for the exact form).
  std::string canonicalJson() const;
  // Lowercase hex SHA-256 of `canonicalJson()`.
  std::string rulesHash() const;
};

template <>
struct EnumNames<WalkingDayBoundary> {
  static constexpr std::array table{
      std::pair{WalkingDayBoundary::anchored, std::string_view("anchored")},
      std::pair{WalkingDayBoundary::calendar, std::string_view("calendar")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::Mode> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::Mode::goal, std::string_view("goal")},
      std::pair{WalkingKoviRules::Mode::race, std::string_view("race")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::GoalMode> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::GoalMode::daily, std::string_view("daily")},
      std::pair{WalkingKoviRules::GoalMode::total, std::string_view("total")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::RaceMode> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::RaceMode::highestTotal, std::string_view("highestTotal")},
      std::pair{WalkingKoviRules::RaceMode::firstToTarget, std::string_view("firstToTarget")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::FailurePolicy> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::FailurePolicy::refund, std::string_view("refund")},
      std::pair{WalkingKoviRules::FailurePolicy::closestWins, std::string_view("closestWins")},
      std::pair{WalkingKoviRules::FailurePolicy::rollover, std::string_view("rollover")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::PayoutRule> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::PayoutRule::equalSuccessful, std::string_view("equalSuccessful")},
      std::pair{WalkingKoviRules::PayoutRule::ranked, std::string_view("ranked")},
  };
};

template <>
struct EnumNames<WalkingKoviRules::FirstDay> {
  static constexpr std::array table{
      std::pair{WalkingKoviRules::FirstDay::today, std::string_view("today")},
      std::pair{WalkingKoviRules::FirstDay::midnight, std::string_view("midnight")},
  };
};

template <>
struct JsonRecordFields<WalkingDayWindow> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("start", &WalkingDayWindow::start), field("end", &WalkingDayWindow::end)};
};

// Strict: exactly the known keys, every enumeration value known, and values
// that can be met (see `validate`).
template <>
struct JsonRecordFields<WalkingKoviRules> : StrictJsonRecord {
  using R = WalkingKoviRules;
  static constexpr auto fields = std::tuple{
      field("mode", &R::mode),
      field("goalMode", &R::goalMode),
      field("raceMode", &R::raceMode),
      field("durationDays", &R::durationDays),
      field("stepTarget", &R::stepTarget),
      field("requiredSuccessfulDays", &R::requiredSuccessfulDays),
      field("minimumEligibility", &R::minimumEligibility),
      field("failurePolicy", &R::failurePolicy),
      field("exitPenaltyBps", &R::exitPenaltyBps),
      field("payoutRule", &R::payoutRule),
      field("rankPayoutsBps", &R::rankPayoutsBps),
      field("verificationWindowHours", &R::verificationWindowHours),
      field("dayBoundary", &R::dayBoundary),
      field("timezone", &R::timezone),
      field("dayWindows", &R::dayWindows),
      field("firstDay", &R::firstDay)};

  // The rules a kovi can be judged by, each refusal at the field it names:
  // the mode's own sub-mode and not the other's; counts that are not
  // negative; 1 to `kWalkingLongestKoviDays` days; required successful days
  // within the kovi; a ranked payout of 1 to 100 shares, each 1 to 10000 bps,
  // totalling 10000.
  static Decoded<void> validate(const WalkingKoviRules& rules, const JsonView& json);
};

// The longest walking kovi, in days: a year, leap day included.
inline constexpr int kWalkingLongestKoviDays = 366;

}  // namespace kovi
