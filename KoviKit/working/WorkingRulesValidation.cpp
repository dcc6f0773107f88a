// Value validation of a decoded rule set. The checks run in a fixed order and
// the first one that fails names the reason.
//
// Overflow: every sum, difference and product below is taken only after the
// range checks before it have bounded its operands (instants inside the kovi
// range, durations under the common ceiling, rank shares under 10000), so no
// input can make them overflow. They still go through the trapping checked
// arithmetic, so a later change that reorders the checks stops loudly instead
// of wrapping a deadline or a share.
#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/CheckedArithmetic.h"
#include "KoviKit/working/WorkingRuleLimits.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {
namespace {

using Rules = WorkingRules;
using Reason = std::optional<std::string_view>;

bool within(std::int64_t value, std::int64_t lowest, std::int64_t highest) {
  return value >= lowest && value <= highest;
}

// An unset optional passes; a set one must lie in the range.
bool withinIfSet(const std::optional<std::int64_t>& value, std::int64_t lowest, std::int64_t highest) {
  return !value || within(*value, lowest, highest);
}

// Set exactly when `required`, and then in the range.
bool presentExactlyWhen(bool required, const std::optional<std::int64_t>& value, std::int64_t lowest,
                        std::int64_t highest) {
  return required ? value && within(*value, lowest, highest) : !value;
}

bool isDuration(std::int64_t seconds) { return within(seconds, 0, kWorkingDurationCeilingSeconds); }
bool isPositiveDuration(std::int64_t seconds) { return within(seconds, 1, kWorkingDurationCeilingSeconds); }

// Unicode scalar values in well-formed UTF-8 (the JSON parser refuses
// ill-formed text): every byte that does not continue a sequence.
std::size_t characterCount(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

bool isWindowID(std::string_view id) {
  if (id.empty() || id.size() > 128) return false;
  return std::ranges::all_of(id, [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == ':' || c == '-';
  });
}

// "0", or up to 30 digits without a leading zero.
bool isAtomicAmount(std::string_view amount) {
  if (amount.empty() || amount.size() > 30) return false;
  if (!std::ranges::all_of(amount, [](char c) { return c >= '0' && c <= '9'; })) return false;
  return amount == "0" || amount.front() != '0';
}

bool isDailyKind(Rules::GoalKind kind) {
  return kind == Rules::GoalKind::daily || kind == Rules::GoalKind::dailyAndTotal;
}

Reason checkVersion(const Rules& rules) {
  if (rules.version != 1 && rules.version != 2) return "Unsupported Working version";
  if (rules.blocking.iphoneEnforcement && rules.version != 2) return "iPhone enforcement role requires version 2";
  return std::nullopt;
}

Reason checkTimezone(const Rules& rules) {
  const std::size_t length = characterCount(rules.calendar.timezone);
  if (length < 1 || length > 100 || !Calendar::isKnownZone(rules.calendar.timezone)) return "Invalid timezone";
  return std::nullopt;
}

Reason checkRange(const Rules& rules) {
  const auto& calendar = rules.calendar;
  if (calendar.startsAt < 0 || calendar.startsAt >= calendar.endsAt || calendar.endsAt > kWorkingLatestInstant ||
      checkedSub(calendar.endsAt, calendar.startsAt) > kWorkingLongestKoviMillis) {
    return "Invalid Kovi range";
  }
  return std::nullopt;
}

Reason checkDayCoverage(const Rules& rules) {
  const auto& days = rules.calendar.days;
  if (days.empty() || days.size() > kWorkingMaximumDays || days.front().start != rules.calendar.startsAt ||
      days.back().end != rules.calendar.endsAt) {
    return "Days must cover the Kovi";
  }
  return std::nullopt;
}

Reason checkDayWindows(const Rules& rules) {
  const auto& days = rules.calendar.days;
  for (std::size_t index = 0; index < days.size(); ++index) {
    const auto& day = days[index];
    const bool continuesPrevious = index == 0 || day.start == days[index - 1].end;
    if (!isWindowID(day.id) || day.start >= day.end || !continuesPrevious) return "Invalid day windows";
  }
  // The days now run contiguously from startsAt to endsAt, so their lengths
  // are bounded by the kovi range.
  if (rules.calendar.dayBoundary == Rules::CalendarPolicy::DayBoundary::anchored) {
    const bool allFullDays = std::ranges::all_of(
        days, [](const Rules::DayWindow& day) { return checkedSub(day.end, day.start) == kWorkingDayMillis; });
    if (!allFullDays) return "Anchored days last 24 hours";
  }
  return std::nullopt;
}

Reason checkSchedule(const Rules& rules) {
  const auto& calendar = rules.calendar;
  if (calendar.windows.size() > kWorkingMaximumWindows) return "Invalid schedule";
  for (std::size_t index = 0; index < calendar.windows.size(); ++index) {
    const auto& window = calendar.windows[index];
    const bool insideKovi = window.start >= calendar.startsAt && window.end <= calendar.endsAt;
    if (!insideKovi || window.start >= window.end || !isPositiveDuration(window.targetSeconds) ||
        checkedMul<std::int64_t>(window.targetSeconds, 1000) > checkedSub(window.end, window.start) ||
        (index > 0 && window.start < calendar.windows[index - 1].end)) {
      return "Invalid schedule window";
    }
  }
  return std::nullopt;
}

Reason checkGoal(const Rules& rules) {
  using Kind = Rules::GoalKind;
  const auto& goal = rules.goal;
  const bool daily = isDailyKind(goal.kind);
  if (!presentExactlyWhen(daily, goal.dailyTargetSeconds, 1, kWorkingDurationCeilingSeconds)) {
    return "Invalid daily goal";
  }
  const auto dayCount = static_cast<std::int64_t>(rules.calendar.days.size());
  if (!presentExactlyWhen(daily, goal.requiredSuccessfulDays, 1, dayCount)) return "Invalid successful days";
  const bool hasTotal = goal.kind == Kind::total || goal.kind == Kind::singleSession ||
                        goal.kind == Kind::dailyAndTotal || goal.kind == Kind::sprint;
  if (!presentExactlyWhen(hasTotal, goal.totalTargetSeconds, 1, kWorkingDurationCeilingSeconds)) {
    return "Invalid total goal";
  }
  const bool scheduled = goal.kind == Kind::scheduled || goal.kind == Kind::sprint;
  if (scheduled && rules.calendar.windows.empty()) return "Schedule required";
  if (goal.kind == Kind::sprint && rules.calendar.windows.size() != 1) return "Sprint has one window";
  if (goal.kind == Kind::singleSession && rules.session.fragmentation != Rules::Fragmentation::singleSession) {
    return "Session cannot fragment";
  }
  return std::nullopt;
}

Reason checkRace(const Rules& rules) {
  using Kind = Rules::RaceKind;
  const auto& race = rules.race;
  if ((race.kind == Kind::consistency || race.kind == Kind::streak) && !isDailyKind(rules.goal.kind)) {
    return "Daily target required";
  }
  const bool hasTarget = race.kind == Kind::firstToTarget || race.kind == Kind::efficiency;
  if (!presentExactlyWhen(hasTarget, race.targetSeconds, 1, kWorkingDurationCeilingSeconds)) {
    return "Invalid race target";
  }
  if (!isDuration(race.minimumEligibilitySeconds)) return "Invalid race eligibility";
  if (!within(race.tieBucketSeconds, 1, kWorkingLongestTieBucketSeconds)) return "Invalid tie bucket";
  if (!within(rules.calendar.lateGraceSeconds, 0, kWorkingLongestStartGraceSeconds)) return "Invalid start grace";
  return std::nullopt;
}

Reason checkPayouts(const Rules& rules) {
  const auto& economics = rules.economics;
  // Without a race there is no ranking to pay: the one reason this check
  // gives covers an eligibility, a ranked payout or rank shares alike.
  if (rules.race.kind == Rules::RaceKind::none) {
    if (rules.race.minimumEligibilitySeconds != 0 || economics.payout != Rules::Payout::equalSuccessful ||
        !economics.rankPayoutsBps.empty()) {
      return "Rank payouts must total 10000";
    }
  } else {
    const auto& shares = economics.rankPayoutsBps;
    const bool sharesInRange = std::ranges::all_of(shares, [](std::int64_t share) { return within(share, 1, kWorkingWholePoolBps); });
    std::int64_t total = 0;
    if (sharesInRange) {
      for (const std::int64_t share : shares) total = checkedAdd(total, share);
    }
    if (economics.payout != Rules::Payout::ranked || shares.empty() || shares.size() > kWorkingMaximumRanks ||
        !sharesInRange || total != kWorkingWholePoolBps) {
      return "Rank payouts must total 10000";
    }
  }
  if (!within(economics.exitPenaltyBps, 0, kWorkingWholePoolBps)) return "Invalid exit penalty";
  return std::nullopt;
}

Reason checkContribution(const Rules& rules) {
  const auto& economics = rules.economics;
  if (!isAtomicAmount(economics.contributionAtomic)) return "Invalid contribution";
  if (economics.funding == Rules::Funding::free && economics.contributionAtomic != "0") {
    return "Free Kovi has no contribution";
  }
  return std::nullopt;
}

Reason checkFundedVerification(const Rules& rules) {
  if (rules.economics.funding == Rules::Funding::funded &&
      (!rules.verification.macRequired || rules.verification.strictness == Rules::Strictness::timerOnly)) {
    return "Funded work requires Mac verification";
  }
  return std::nullopt;
}

Reason checkVerification(const Rules& rules) {
  const auto& verification = rules.verification;
  if (!withinIfSet(verification.idleThresholdSeconds, 1, kWorkingDurationCeilingSeconds) ||
      !isPositiveDuration(verification.passive.idleThresholdSeconds) || !isDuration(verification.graceSeconds) ||
      !within(verification.resumeDebounceSeconds, 1, 60) || !within(verification.heartbeatSeconds, 5, 300)) {
    return "Invalid verification timing";
  }
  if (verification.strictness == Rules::Strictness::strict &&
      verification.permissionLoss != Rules::PermissionLoss::pause) {
    return "Strict permission loss must pause";
  }
  return std::nullopt;
}

Reason checkSession(const Rules& rules) {
  const auto& session = rules.session;
  if (!isDuration(session.minimumSeconds) || !isDuration(session.restSeconds) ||
      !withinIfSet(session.hardWindowSeconds, 1, kWorkingDurationCeilingSeconds) ||
      !withinIfSet(session.continuityBreakSeconds, 1, kWorkingDurationCeilingSeconds) ||
      !withinIfSet(session.dailyCapSeconds, 1, kWorkingDurationCeilingSeconds) ||
      !withinIfSet(session.maximumSessionsPerDay, 1, kWorkingMaximumSessionsPerDay)) {
    return "Invalid session timing";
  }
  return std::nullopt;
}

Reason checkBreaks(const Rules& rules) {
  const auto& breaks = rules.breaks;
  if (!withinIfSet(breaks.maximumPerSessionSeconds, 1, kWorkingDurationCeilingSeconds) ||
      !withinIfSet(breaks.maximumPerDaySeconds, 1, kWorkingDurationCeilingSeconds) ||
      !withinIfSet(breaks.maximumPerBreakSeconds, 1, kWorkingDurationCeilingSeconds)) {
    return "Invalid break limits";
  }
  return std::nullopt;
}

Reason checkPomodoro(const Rules& rules) {
  const auto& pomodoro = rules.session.pomodoro;
  if (pomodoro && (!isPositiveDuration(pomodoro->workSeconds) || !isDuration(pomodoro->breakSeconds))) {
    return "Invalid pomodoro";
  }
  return std::nullopt;
}

Reason checkBlocking(const Rules& rules) {
  const auto& blocking = rules.blocking;
  const std::array selections{&blocking.mac.apps, &blocking.mac.websites, &blocking.iphone.apps,
                              &blocking.iphone.websites};
  for (const Rules::Selection* selection : selections) {
    if (selection->required && selection->mode == Rules::SelectionMode::off) return "Required blocker cannot be off";
  }
  const auto& bypass = blocking.bypass;
  if (!within(bypass.usesPerSession, 0, kWorkingMaximumBypassUses) || !isDuration(bypass.secondsPerUse)) {
    return "Invalid bypass allowance";
  }
  if (bypass.mode == Rules::BypassMode::limited && (bypass.usesPerSession < 1 || bypass.secondsPerUse < 1)) {
    return "Limited bypass needs an allowance";
  }
  if (bypass.consequence == Rules::BypassConsequence::failDay &&
      !(bypass.violationsToFailDay && *bypass.violationsToFailDay >= 1)) {
    return "Violation threshold required";
  }
  return std::nullopt;
}

using Check = Reason (*)(const Rules&);

constexpr std::array<Check, 16> kChecks{
    checkVersion,      checkTimezone,    checkRange,       checkDayCoverage,        checkDayWindows, checkSchedule,
    checkGoal,         checkRace,        checkPayouts,     checkContribution,       checkFundedVerification,
    checkVerification, checkSession,     checkBreaks,      checkPomodoro,           checkBlocking,
};

}  // namespace

std::expected<void, WorkingRules::ValidationError> WorkingRules::validate() const {
  for (const Check check : kChecks) {
    if (const Reason reason = check(*this)) return std::unexpected(ValidationError{std::string(*reason)});
  }
  return {};
}

}  // namespace kovi
