// JSON decoding and encoding of WorkingRules: the key lists below fix both the
// typed decoding and the encoded key order.
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingRuleShape.h"
#include "KoviKit/working/WorkingRules.h"

namespace kovi {

using Rules = WorkingRules;

template <>
struct JsonRecordFields<Rules::Goal> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("kind", &Rules::Goal::kind), field("dailyTargetSeconds", &Rules::Goal::dailyTargetSeconds),
      field("totalTargetSeconds", &Rules::Goal::totalTargetSeconds),
      field("requiredSuccessfulDays", &Rules::Goal::requiredSuccessfulDays)};
};

template <>
struct JsonRecordFields<Rules::Race> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("kind", &Rules::Race::kind),
                 field("minimumEligibilitySeconds", &Rules::Race::minimumEligibilitySeconds),
                 field("targetSeconds", &Rules::Race::targetSeconds),
                 field("tieBucketSeconds", &Rules::Race::tieBucketSeconds),
                 field("efficiencyTieBreak", &Rules::Race::efficiencyTieBreak)};
};

template <>
struct JsonRecordFields<Rules::DayWindow> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("id", &Rules::DayWindow::id), field("start", &Rules::DayWindow::start),
                                            field("end", &Rules::DayWindow::end)};
};

template <>
struct JsonRecordFields<Rules::ScheduleWindow> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("id", &Rules::ScheduleWindow::id), field("start", &Rules::ScheduleWindow::start),
                 field("end", &Rules::ScheduleWindow::end),
                 field("targetSeconds", &Rules::ScheduleWindow::targetSeconds)};
};

template <>
struct JsonRecordFields<Rules::CalendarPolicy> : StrictJsonRecord {
  using C = Rules::CalendarPolicy;
  static constexpr auto fields = std::tuple{
      field("timezone", &C::timezone),           field("dayBoundary", &C::dayBoundary),
      field("startsAt", &C::startsAt),           field("endsAt", &C::endsAt),
      field("days", &C::days),                   field("windows", &C::windows),
      field("outsideWindow", &C::outsideWindow), field("lateStart", &C::lateStart),
      field("lateGraceSeconds", &C::lateGraceSeconds), field("makeupAllowed", &C::makeupAllowed)};
};

template <>
struct JsonRecordFields<Rules::Pomodoro> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("workSeconds", &Rules::Pomodoro::workSeconds),
                                            field("breakSeconds", &Rules::Pomodoro::breakSeconds)};
};

template <>
struct JsonRecordFields<Rules::Session> : StrictJsonRecord {
  using S = Rules::Session;
  static constexpr auto fields = std::tuple{field("fragmentation", &S::fragmentation),
                                            field("minimumSeconds", &S::minimumSeconds),
                                            field("maximumSessionsPerDay", &S::maximumSessionsPerDay),
                                            field("hardWindowSeconds", &S::hardWindowSeconds),
                                            field("continuity", &S::continuity),
                                            field("continuityBreakSeconds", &S::continuityBreakSeconds),
                                            field("handoffPreservesContinuity", &S::handoffPreservesContinuity),
                                            field("restSeconds", &S::restSeconds),
                                            field("dailyCapSeconds", &S::dailyCapSeconds),
                                            field("completion", &S::completion),
                                            field("pomodoro", &S::pomodoro),
                                            field("synchronized", &S::synchronized),
                                            field("allReadyRequired", &S::allReadyRequired),
                                            field("lateJoin", &S::lateJoin)};
};

template <>
struct JsonRecordFields<Rules::Passive> : StrictJsonRecord {
  using P = Rules::Passive;
  static constexpr auto fields =
      std::tuple{field("allowed", &P::allowed), field("idleThresholdSeconds", &P::idleThresholdSeconds),
                 field("meetingsCount", &P::meetingsCount), field("readingCounts", &P::readingCounts)};
};

template <>
struct JsonRecordFields<Rules::Verification> : StrictJsonRecord {
  using V = Rules::Verification;
  static constexpr auto fields = std::tuple{field("strictness", &V::strictness),
                                            field("macRequired", &V::macRequired),
                                            field("idleThresholdSeconds", &V::idleThresholdSeconds),
                                            field("resume", &V::resume),
                                            field("resumeDebounceSeconds", &V::resumeDebounceSeconds),
                                            field("passive", &V::passive),
                                            field("remoteWorkAllowed", &V::remoteWorkAllowed),
                                            field("permissionLoss", &V::permissionLoss),
                                            field("partialSegments", &V::partialSegments),
                                            field("graceSeconds", &V::graceSeconds),
                                            field("unresolvedSegments", &V::unresolvedSegments),
                                            field("heartbeatSeconds", &V::heartbeatSeconds)};
};

template <>
struct JsonRecordFields<Rules::Breaks> : StrictJsonRecord {
  using B = Rules::Breaks;
  static constexpr auto fields = std::tuple{field("manualAllowed", &B::manualAllowed),
                                            field("protection", &B::protection),
                                            field("maximumPerSessionSeconds", &B::maximumPerSessionSeconds),
                                            field("maximumPerDaySeconds", &B::maximumPerDaySeconds),
                                            field("maximumPerBreakSeconds", &B::maximumPerBreakSeconds),
                                            field("overrun", &B::overrun)};
};

template <>
struct JsonRecordFields<Rules::Selection> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("mode", &Rules::Selection::mode), field("required", &Rules::Selection::required)};
};

template <>
struct JsonRecordFields<Rules::DeviceBlocking> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("apps", &Rules::DeviceBlocking::apps),
                                            field("websites", &Rules::DeviceBlocking::websites)};
};

template <>
struct JsonRecordFields<Rules::Bypass> : StrictJsonRecord {
  using B = Rules::Bypass;
  static constexpr auto fields = std::tuple{field("mode", &B::mode),
                                            field("usesPerSession", &B::usesPerSession),
                                            field("secondsPerUse", &B::secondsPerUse),
                                            field("consequence", &B::consequence),
                                            field("violationsToFailDay", &B::violationsToFailDay),
                                            field("emergencyAlwaysAvailable", &B::emergencyAlwaysAvailable)};
};

template <>
struct JsonRecordFields<Rules::Blocking> : StrictJsonRecord {
  using B = Rules::Blocking;
  static constexpr auto fields =
      std::tuple{field("mac", &B::mac),
                 field("iphone", &B::iphone),
                 field("iphoneEnforcement", &B::iphoneEnforcement),
                 field("deviceScope", &B::deviceScope),
                 field("exemptionsAllowed", &B::exemptionsAllowed),
                 field("bypass", &B::bypass)};
};

template <>
struct JsonRecordFields<Rules::Privacy> : StrictJsonRecord {
  using P = Rules::Privacy;
  static constexpr auto fields = std::tuple{field("presence", &P::presence),
                                            field("exactDuration", &P::exactDuration),
                                            field("sessionTiming", &P::sessionTiming),
                                            field("taskLabel", &P::taskLabel),
                                            field("shareDistractionAggregates", &P::shareDistractionAggregates)};
};

template <>
struct JsonRecordFields<Rules::Economics> : StrictJsonRecord {
  using E = Rules::Economics;
  static constexpr auto fields = std::tuple{field("funding", &E::funding),
                                            field("contributionAtomic", &E::contributionAtomic),
                                            field("payout", &E::payout),
                                            field("rankPayoutsBps", &E::rankPayoutsBps),
                                            field("fallback", &E::fallback),
                                            field("exitPenaltyBps", &E::exitPenaltyBps),
                                            field("manualEntry", &E::manualEntry),
                                            field("rounding", &E::rounding)};
};

template <>
struct JsonRecordFields<Rules> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("version", &Rules::version),           field("preset", &Rules::preset),
                 field("category", &Rules::category),         field("goal", &Rules::goal),
                 field("race", &Rules::race),                 field("calendar", &Rules::calendar),
                 field("session", &Rules::session),           field("verification", &Rules::verification),
                 field("breaks", &Rules::breaks),             field("blocking", &Rules::blocking),
                 field("privacy", &Rules::privacy),           field("economics", &Rules::economics)};
};


namespace {

using Failure = WorkingRulesDecodeError;

// Where the three stages stopped. A decoding failure keeps its key path; the
// shape and validation reasons speak for the rule set as a whole.
struct StageFailure {
  Failure::Stage stage;
  DecodeError error;

  std::string reason() const { return stage == Failure::Stage::decoding ? error.message() : error.reason; }
};

std::expected<WorkingRules, StageFailure> decodeStages(const JsonView& view) {
  if (auto shape = WorkingRuleShape::check(view.json()); !shape) {
    return std::unexpected(StageFailure{Failure::Stage::shape, DecodeError{"", std::move(shape.error())}});
  }
  auto rules = decodeRecord<WorkingRules>(view);
  if (!rules) return std::unexpected(StageFailure{Failure::Stage::decoding, std::move(rules.error())});
  if (auto valid = rules->validate(); !valid) {
    return std::unexpected(StageFailure{Failure::Stage::validation, DecodeError{"", std::move(valid.error().reason)}});
  }
  return std::move(*rules);
}

}  // namespace

std::expected<WorkingRules, WorkingRulesDecodeError> decodeWorkingRulesDocument(const nlohmann::json& document) {
  auto rules = decodeStages(JsonView(document, "rules"));
  if (!rules) return std::unexpected(Failure{rules.error().stage, rules.error().reason()});
  return std::move(*rules);
}

std::expected<WorkingRules, WorkingRulesDecodeError> decodeWorkingRules(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(Failure{Failure::Stage::syntax, document.error().message()});
  return decodeWorkingRulesDocument(*document);
}

Decoded<WorkingRules> JsonDecoder<WorkingRules>::decode(const JsonView& json) {
  auto rules = decodeStages(json);
  if (!rules) {
    if (rules.error().stage == Failure::Stage::decoding) return std::unexpected(std::move(rules.error().error));
    return std::unexpected(json.error(rules.error().reason()));
  }
  return std::move(*rules);
}

nlohmann::ordered_json encodeWorkingRules(const WorkingRules& rules) { return encodeRecord(rules); }

std::string encodeWorkingRulesText(const WorkingRules& rules) { return encodeWorkingRules(rules).dump(); }

}  // namespace kovi
