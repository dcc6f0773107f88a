#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// The preset a rule set was made from; the creation form fills in its defaults.
enum class WorkingPreset {
  lockedIn,
  dailyWork,
  totalWork,
  consistency,
  race,
  firstToTarget,
  sprint,
  scheduledSessions,
  deepWork,
  flexibleWork,
};

// The complete, consented rule set of one working kovi. Immutable once the
// kovi has started; two rule sets are the same exactly when they are equal
// field by field. All durations are whole seconds, all instants whole Unix
// milliseconds. Optional fields travel as JSON null, never omitted.
struct WorkingRules {
  enum class Category { coding, study, writing, reading, design, meetings, generalWork, custom };
  enum class GoalKind { daily, total, singleSession, dailyAndTotal, scheduled, sprint };
  enum class RaceKind { none, highestTotal, firstToTarget, consistency, streak, efficiency };
  enum class Fragmentation { allowed, singleSession };
  enum class Continuity { flexible, strict };
  enum class Strictness { strict, standard, flexible, timerOnly };
  enum class Resume { automatic, confirmed };
  enum class PermissionLoss { pause, unverified };
  enum class PartialSegments { exclude, acceptedOnly };
  enum class Protection { strict, relaxed, customAllowlist };
  enum class BreakOverrun { extendElapsed, warning, invalidateSession, penalty };
  enum class SelectionMode { off, blocklist, allowlist };
  enum class DeviceScope { activeMac, activeMacAndIPhone, allRegistered };
  enum class IPhoneEnforcement { required, auxiliary };
  enum class BypassMode { none, limited, emergency };
  enum class BypassConsequence { excludeTime, invalidateSession, failDay };
  enum class Funding { free, funded };
  enum class Payout { equalSuccessful, ranked };
  enum class Fallback { refund, closestToTarget, rollover };
  enum class ManualEntry { forbidden, groupApproval };
  enum class Rounding { largestRemainderAccountID, largestRemainderAddress };

  struct Goal {
    GoalKind kind;
    std::optional<std::int64_t> dailyTargetSeconds;
    std::optional<std::int64_t> totalTargetSeconds;
    std::optional<std::int64_t> requiredSuccessfulDays;
    bool operator==(const Goal&) const = default;
  };

  struct Race {
    enum class EfficiencyTieBreak { shared, earliestTarget };
    RaceKind kind;
    std::int64_t minimumEligibilitySeconds;
    std::optional<std::int64_t> targetSeconds;
    std::int64_t tieBucketSeconds;
    EfficiencyTieBreak efficiencyTieBreak;
    bool operator==(const Race&) const = default;
  };

  // One kovi day: a fixed span in the rule's time zone.
  struct DayWindow {
    std::string id;
    std::int64_t start;
    std::int64_t end;
    bool operator==(const DayWindow&) const = default;
  };

  // One scheduled work window with its own target.
  struct ScheduleWindow {
    std::string id;
    std::int64_t start;
    std::int64_t end;
    std::int64_t targetSeconds;
    bool operator==(const ScheduleWindow&) const = default;
  };

  struct CalendarPolicy {
    enum class DayBoundary { calendar, anchored };
    enum class OutsideWindow { exclude, separate };
    enum class LateStart { allowed, grace, fail };
    std::string timezone;
    DayBoundary dayBoundary;
    std::int64_t startsAt;
    std::int64_t endsAt;
    std::vector<DayWindow> days;
    std::vector<ScheduleWindow> windows;
    OutsideWindow outsideWindow;
    LateStart lateStart;
    std::int64_t lateGraceSeconds;
    bool makeupAllowed;
    bool operator==(const CalendarPolicy&) const = default;
  };

  struct Pomodoro {
    std::int64_t workSeconds;
    std::int64_t breakSeconds;
    bool operator==(const Pomodoro&) const = default;
  };

  struct Session {
    enum class Completion { stop, continue_ };
    enum class LateJoin { allowed, forbidden, remainingWindow, fullTarget };
    Fragmentation fragmentation;
    std::int64_t minimumSeconds;
    std::optional<std::int64_t> maximumSessionsPerDay;
    std::optional<std::int64_t> hardWindowSeconds;  // wall-clock limit of one session
    Continuity continuity;
    std::optional<std::int64_t> continuityBreakSeconds;
    bool handoffPreservesContinuity;  // whether a change of Mac keeps a session continuous
    std::int64_t restSeconds;         // mandatory rest between sessions
    std::optional<std::int64_t> dailyCapSeconds;
    Completion completion;
    std::optional<Pomodoro> pomodoro;
    bool synchronized;  // shared group start
    bool allReadyRequired;
    LateJoin lateJoin;
    bool operator==(const Session&) const = default;
  };

  struct Passive {
    bool allowed;
    std::int64_t idleThresholdSeconds;
    bool meetingsCount;
    bool readingCounts;
    bool operator==(const Passive&) const = default;
  };

  struct Verification {
    enum class Unresolved { exclude };
    Strictness strictness;
    bool macRequired;
    std::optional<std::int64_t> idleThresholdSeconds;
    Resume resume;
    std::int64_t resumeDebounceSeconds;
    Passive passive;
    bool remoteWorkAllowed;
    PermissionLoss permissionLoss;
    PartialSegments partialSegments;
    std::int64_t graceSeconds;
    Unresolved unresolvedSegments;
    std::int64_t heartbeatSeconds;
    bool operator==(const Verification&) const = default;
  };

  // Absent limits mean no limit.
  struct Breaks {
    bool manualAllowed;
    Protection protection;
    std::optional<std::int64_t> maximumPerSessionSeconds;
    std::optional<std::int64_t> maximumPerDaySeconds;
    std::optional<std::int64_t> maximumPerBreakSeconds;
    BreakOverrun overrun;
    bool operator==(const Breaks&) const = default;
  };

  struct Selection {
    SelectionMode mode;
    bool required;
    bool operator==(const Selection&) const = default;
  };

  struct DeviceBlocking {
    Selection apps;
    Selection websites;
    bool operator==(const DeviceBlocking&) const = default;
  };

  struct Bypass {
    BypassMode mode;
    std::int64_t usesPerSession;
    std::int64_t secondsPerUse;
    BypassConsequence consequence;
    std::optional<std::int64_t> violationsToFailDay;
    bool emergencyAlwaysAvailable;
    bool operator==(const Bypass&) const = default;
  };

  struct Blocking {
    DeviceBlocking mac;
    DeviceBlocking iphone;
    std::optional<IPhoneEnforcement> iphoneEnforcement;  // rule-format version 2 only
    DeviceScope deviceScope;
    bool exemptionsAllowed;
    Bypass bypass;
    bool operator==(const Blocking&) const = default;
  };

  struct Privacy {
    enum class Presence { activeStatus, progressOnly, hidden };
    enum class TaskLabel { private_, shared };
    Presence presence;
    bool exactDuration;
    bool sessionTiming;
    TaskLabel taskLabel;
    bool shareDistractionAggregates;
    bool operator==(const Privacy&) const = default;
  };

  struct Economics {
    Funding funding;
    std::string contributionAtomic;  // unsigned decimal string of atomic token units
    Payout payout;
    std::vector<std::int64_t> rankPayoutsBps;
    Fallback fallback;
    std::int64_t exitPenaltyBps;
    ManualEntry manualEntry;
    Rounding rounding;
    bool operator==(const Economics&) const = default;
  };

  // Why a rule set is refused: one short English reason ("Invalid Kovi range").
  struct ValidationError {
    std::string reason;
    bool operator==(const ValidationError&) const = default;
  };

  std::int64_t version;
  WorkingPreset preset;
  Category category;
  Goal goal;
  Race race;
  CalendarPolicy calendar;
  Session session;
  Verification verification;
  Breaks breaks;
  Blocking blocking;
  Privacy privacy;
  Economics economics;

  // Every value check, in a fixed order; the first failure is the reason.
  std::expected<void, ValidationError> validate() const;

  bool operator==(const WorkingRules&) const = default;
};

// Why a rule document was refused, and at which stage: JSON syntax, the
// strict key shape, typed decoding (wrong type, unknown enumeration value) or
// value validation. `reason` is the text to report: the shape and validation
// reasons exactly ("Unknown or missing policy field at rules.goal", "Invalid
// Kovi range"), a decoding failure as its key path and cause.
struct WorkingRulesDecodeError {
  enum class Stage { syntax, shape, decoding, validation };
  Stage stage;
  std::string reason;
  bool operator==(const WorkingRulesDecodeError&) const = default;
};

// Shape check, typed decoding and validation of one rule document, in that
// order: the result is a rule set that may be applied, or why not.
std::expected<WorkingRules, WorkingRulesDecodeError> decodeWorkingRules(std::string_view text);
// The same stages on an already parsed document.
std::expected<WorkingRules, WorkingRulesDecodeError> decodeWorkingRulesDocument(const nlohmann::json& document);

// The rule set's JSON in declared key order, unset optionals as null.
nlohmann::ordered_json encodeWorkingRules(const WorkingRules& rules);
// The compact text of `encodeWorkingRules`: the canonical bytes of a rule set.
std::string encodeWorkingRulesText(const WorkingRules& rules);

// Rule sets nested in other records decode through the same three stages;
// a failure is reported at the nested position with the rule reason.
template <>
struct JsonDecoder<WorkingRules> {
  static Decoded<WorkingRules> decode(const JsonView& json);
};

// Enumeration raw values, as they travel in JSON.
#define KOVI_WORKING_ENUM_NAMES(Type, ...)                                          \
  template <>                                                                       \
  struct EnumNames<Type> {                                                          \
    using Entry = std::pair<Type, std::string_view>;                                \
    static constexpr auto table = std::to_array<Entry>({__VA_ARGS__});              \
  }

KOVI_WORKING_ENUM_NAMES(WorkingPreset, {WorkingPreset::lockedIn, "lockedIn"}, {WorkingPreset::dailyWork, "dailyWork"},
                        {WorkingPreset::totalWork, "totalWork"}, {WorkingPreset::consistency, "consistency"},
                        {WorkingPreset::race, "race"}, {WorkingPreset::firstToTarget, "firstToTarget"},
                        {WorkingPreset::sprint, "sprint"}, {WorkingPreset::scheduledSessions, "scheduledSessions"},
                        {WorkingPreset::deepWork, "deepWork"}, {WorkingPreset::flexibleWork, "flexibleWork"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Category, {WorkingRules::Category::coding, "coding"},
                        {WorkingRules::Category::study, "study"}, {WorkingRules::Category::writing, "writing"},
                        {WorkingRules::Category::reading, "reading"}, {WorkingRules::Category::design, "design"},
                        {WorkingRules::Category::meetings, "meetings"},
                        {WorkingRules::Category::generalWork, "generalWork"},
                        {WorkingRules::Category::custom, "custom"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::GoalKind, {WorkingRules::GoalKind::daily, "daily"},
                        {WorkingRules::GoalKind::total, "total"},
                        {WorkingRules::GoalKind::singleSession, "singleSession"},
                        {WorkingRules::GoalKind::dailyAndTotal, "dailyAndTotal"},
                        {WorkingRules::GoalKind::scheduled, "scheduled"}, {WorkingRules::GoalKind::sprint, "sprint"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::RaceKind, {WorkingRules::RaceKind::none, "none"},
                        {WorkingRules::RaceKind::highestTotal, "highestTotal"},
                        {WorkingRules::RaceKind::firstToTarget, "firstToTarget"},
                        {WorkingRules::RaceKind::consistency, "consistency"},
                        {WorkingRules::RaceKind::streak, "streak"}, {WorkingRules::RaceKind::efficiency, "efficiency"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Race::EfficiencyTieBreak,
                        {WorkingRules::Race::EfficiencyTieBreak::shared, "shared"},
                        {WorkingRules::Race::EfficiencyTieBreak::earliestTarget, "earliestTarget"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::CalendarPolicy::DayBoundary,
                        {WorkingRules::CalendarPolicy::DayBoundary::calendar, "calendar"},
                        {WorkingRules::CalendarPolicy::DayBoundary::anchored, "anchored"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::CalendarPolicy::OutsideWindow,
                        {WorkingRules::CalendarPolicy::OutsideWindow::exclude, "exclude"},
                        {WorkingRules::CalendarPolicy::OutsideWindow::separate, "separate"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::CalendarPolicy::LateStart,
                        {WorkingRules::CalendarPolicy::LateStart::allowed, "allowed"},
                        {WorkingRules::CalendarPolicy::LateStart::grace, "grace"},
                        {WorkingRules::CalendarPolicy::LateStart::fail, "fail"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Fragmentation, {WorkingRules::Fragmentation::allowed, "allowed"},
                        {WorkingRules::Fragmentation::singleSession, "singleSession"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Continuity, {WorkingRules::Continuity::flexible, "flexible"},
                        {WorkingRules::Continuity::strict, "strict"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Session::Completion, {WorkingRules::Session::Completion::stop, "stop"},
                        {WorkingRules::Session::Completion::continue_, "continue"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Session::LateJoin, {WorkingRules::Session::LateJoin::allowed, "allowed"},
                        {WorkingRules::Session::LateJoin::forbidden, "forbidden"},
                        {WorkingRules::Session::LateJoin::remainingWindow, "remainingWindow"},
                        {WorkingRules::Session::LateJoin::fullTarget, "fullTarget"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Strictness, {WorkingRules::Strictness::strict, "strict"},
                        {WorkingRules::Strictness::standard, "standard"},
                        {WorkingRules::Strictness::flexible, "flexible"},
                        {WorkingRules::Strictness::timerOnly, "timerOnly"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Resume, {WorkingRules::Resume::automatic, "automatic"},
                        {WorkingRules::Resume::confirmed, "confirmed"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::PermissionLoss, {WorkingRules::PermissionLoss::pause, "pause"},
                        {WorkingRules::PermissionLoss::unverified, "unverified"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::PartialSegments, {WorkingRules::PartialSegments::exclude, "exclude"},
                        {WorkingRules::PartialSegments::acceptedOnly, "acceptedOnly"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Verification::Unresolved,
                        {WorkingRules::Verification::Unresolved::exclude, "exclude"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Protection, {WorkingRules::Protection::strict, "strict"},
                        {WorkingRules::Protection::relaxed, "relaxed"},
                        {WorkingRules::Protection::customAllowlist, "customAllowlist"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::BreakOverrun, {WorkingRules::BreakOverrun::extendElapsed, "extendElapsed"},
                        {WorkingRules::BreakOverrun::warning, "warning"},
                        {WorkingRules::BreakOverrun::invalidateSession, "invalidateSession"},
                        {WorkingRules::BreakOverrun::penalty, "penalty"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::SelectionMode, {WorkingRules::SelectionMode::off, "off"},
                        {WorkingRules::SelectionMode::blocklist, "blocklist"},
                        {WorkingRules::SelectionMode::allowlist, "allowlist"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::DeviceScope, {WorkingRules::DeviceScope::activeMac, "activeMac"},
                        {WorkingRules::DeviceScope::activeMacAndIPhone, "activeMacAndIPhone"},
                        {WorkingRules::DeviceScope::allRegistered, "allRegistered"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::IPhoneEnforcement, {WorkingRules::IPhoneEnforcement::required, "required"},
                        {WorkingRules::IPhoneEnforcement::auxiliary, "auxiliary"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::BypassMode, {WorkingRules::BypassMode::none, "none"},
                        {WorkingRules::BypassMode::limited, "limited"},
                        {WorkingRules::BypassMode::emergency, "emergency"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::BypassConsequence,
                        {WorkingRules::BypassConsequence::excludeTime, "excludeTime"},
                        {WorkingRules::BypassConsequence::invalidateSession, "invalidateSession"},
                        {WorkingRules::BypassConsequence::failDay, "failDay"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Privacy::Presence,
                        {WorkingRules::Privacy::Presence::activeStatus, "activeStatus"},
                        {WorkingRules::Privacy::Presence::progressOnly, "progressOnly"},
                        {WorkingRules::Privacy::Presence::hidden, "hidden"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Privacy::TaskLabel, {WorkingRules::Privacy::TaskLabel::private_, "private"},
                        {WorkingRules::Privacy::TaskLabel::shared, "shared"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Funding, {WorkingRules::Funding::free, "free"},
                        {WorkingRules::Funding::funded, "funded"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Payout, {WorkingRules::Payout::equalSuccessful, "equalSuccessful"},
                        {WorkingRules::Payout::ranked, "ranked"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Fallback, {WorkingRules::Fallback::refund, "refund"},
                        {WorkingRules::Fallback::closestToTarget, "closestToTarget"},
                        {WorkingRules::Fallback::rollover, "rollover"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::ManualEntry, {WorkingRules::ManualEntry::forbidden, "forbidden"},
                        {WorkingRules::ManualEntry::groupApproval, "groupApproval"});
KOVI_WORKING_ENUM_NAMES(WorkingRules::Rounding,
                        {WorkingRules::Rounding::largestRemainderAccountID, "largestRemainderAccountID"},
                        {WorkingRules::Rounding::largestRemainderAddress, "largestRemainderAddress"});

#undef KOVI_WORKING_ENUM_NAMES

}  // namespace kovi
