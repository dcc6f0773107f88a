#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/working/WorkingSessionEngine.h"
#include "KoviKit/working/WorkingSessionStatus.h"
#include "tests/working/WorkingSessionTestSupport.h"

namespace kovi {
namespace {

using namespace kovi::testing;
using Type = WorkingSessionEvent::Type;
using State = WorkingSessionState;
using Reason = WorkingSuspensionReason;
using ErrorKind = WorkingSessionError::Kind;
using Transport = WorkingTransportState;

struct Totals {
  std::int64_t active = 0;  // settled work; provisional work is counted apart
  std::int64_t provisional = 0;
  std::int64_t idle = 0;
  std::int64_t breaks = 0;
  std::int64_t unverified = 0;
  std::int64_t violation = 0;
};

struct Scenario {
  const char* name;
  std::function<void(WorkingSessionPolicy&)> edit;
  std::vector<WorkingSessionEvent> events;
  State state;
  std::optional<Reason> reason;
  Totals totals;
};

WorkingSessionEngine run(const WorkingSessionPolicy& policy, const std::vector<WorkingSessionEvent>& events) {
  WorkingSessionEngine engine = sessionEngine(policy);
  for (const auto& event : events) {
    const auto outcome = engine.observe(event);
    EXPECT_TRUE(outcome.has_value()) << enumName(event.type) << " at " << event.at << ": "
                                     << enumName(outcome.error().kind);
  }
  return engine;
}

std::vector<WorkingSessionEvent> activityAt(std::initializer_list<UnixMillis> instants) {
  std::vector<WorkingSessionEvent> events;
  for (UnixMillis at : instants) events.push_back(sessionEvent(at, Type::activity));
  return events;
}

std::vector<WorkingSessionEvent> concat(std::initializer_list<std::vector<WorkingSessionEvent>> parts) {
  std::vector<WorkingSessionEvent> all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const auto unchanged = [](WorkingSessionPolicy&) {};

TEST(WorkingSessionEngineTest, ClassifiesTimeByTheRulesOfEachState) {
  const std::vector<WorkingSessionEvent> idleToBreak = {startEvent(0), sessionEvent(100'000, Type::tick),
                                                        sessionEvent(200'000, Type::tick)};
  const std::vector<Scenario> scenarios = {
      {"idle threshold, then possible idle for one more threshold, then a break", unchanged, idleToBreak,
       State::autoBreak, std::nullopt, {.active = 60'000, .idle = 60'000, .breaks = 80'000}},
      {"activity lasting the debounce resumes automatically", unchanged,
       concat({idleToBreak, activityAt({201'000, 203'000, 205'000, 206'000}), {sessionEvent(210'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 64'000, .idle = 60'000, .breaks = 86'000}},
      {"an input gap over the maximum restarts the debounce", unchanged,
       concat({idleToBreak, activityAt({201'000, 204'000, 206'000})}), State::autoBreak, std::nullopt,
       {.active = 60'000, .idle = 60'000, .breaks = 86'000}},
      {"with confirmation, activity does not end a break but the confirmation does",
       [](WorkingSessionPolicy& p) { p.resumeMode = WorkingSessionPolicy::ResumeMode::confirmation; },
       concat({idleToBreak, activityAt({201'000, 203'000, 205'000, 206'000}),
               {sessionEvent(207'000, Type::resume), sessionEvent(210'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 63'000, .idle = 60'000, .breaks = 87'000}},
      {"a lock suspends; unlocking alone does not count, the resume rule does", unchanged,
       concat({{startEvent(0), sessionEvent(20'000, Type::lock), sessionEvent(30'000, Type::unlock)},
               activityAt({41'000, 43'000, 45'000, 46'000}),
               {sessionEvent(50'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 24'000, .unverified = 26'000}},
      {"system sleep is never counted", unchanged,
       {startEvent(0), sessionEvent(30'000, Type::sleep), sessionEvent(90'000, Type::wake),
        sessionEvent(100'000, Type::tick)},
       State::suspended, Reason::sleeping, {.active = 30'000, .unverified = 70'000}},
      {"a readiness loss suspends with the first blocking reason", unchanged,
       {startEvent(0), readinessEvent(10'000, {true, true, false, false, true, true, true}),
        sessionEvent(20'000, Type::tick)},
       State::suspended, Reason::displaySleeping, {.active = 10'000, .unverified = 10'000}},
      {"a gap between observations over the maximum is unverified and suspends", unchanged,
       {startEvent(0), sessionEvent(50'000, Type::tick), sessionEvent(200'000, Type::tick)}, State::suspended,
       Reason::observationGap, {.active = 50'000, .unverified = 150'000}},
      {"the agent's downtime before a restart is unverified", unchanged,
       {startEvent(0), sessionEvent(30'000, Type::activity), sessionEvent(60'000, Type::restart)}, State::suspended,
       Reason::agentRestarted, {.active = 30'000, .unverified = 30'000}},
      {"a blocking violation counts as violation", unchanged,
       {startEvent(0), sessionEvent(10'000, Type::violation), sessionEvent(40'000, Type::tick)}, State::suspended,
       Reason::blockingViolation, {.active = 10'000, .violation = 30'000}},
      {"a manual break ends by the resume rule", unchanged,
       concat({{startEvent(0), sessionEvent(10'000, Type::manualBreak)}, activityAt({11'000, 13'000, 15'000, 16'000}),
               {sessionEvent(20'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 14'000, .breaks = 6'000}},
      {"a remote break is break time and ends by the resume rule", unchanged,
       concat({{startEvent(0), sessionEvent(10'000, Type::remoteBreak)}, activityAt({11'000, 13'000, 15'000, 16'000}),
               {sessionEvent(20'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 14'000, .breaks = 6'000}},
      {"offline time is provisional for 90 s after the last verified state, then unverified", unchanged,
       {startEvent(0), transportEvent(10'000, Transport::offlineLocal), sessionEvent(50'000, Type::activity),
        sessionEvent(100'000, Type::activity), sessionEvent(150'000, Type::tick)},
       State::active, std::nullopt, {.active = 10'000, .provisional = 90'000, .unverified = 50'000}},
      {"reconciling settles provisional work as counted work, once", unchanged,
       {startEvent(0), transportEvent(10'000, Transport::offlineLocal), sessionEvent(50'000, Type::activity),
        transportEvent(60'000, Transport::reconciled), sessionEvent(70'000, Type::tick)},
       State::active, std::nullopt, {.active = 70'000}},
      {"nothing after the hard window counts", [](WorkingSessionPolicy& p) { p.hardWindowMS = 30'000; },
       {startEvent(0), sessionEvent(20'000, Type::activity), sessionEvent(40'000, Type::activity),
        sessionEvent(50'000, Type::tick)},
       State::active, std::nullopt, {.active = 30'000, .unverified = 20'000}},
      {"pomodoro breaks are break time", [](WorkingSessionPolicy& p) { p.pomodoro = {{120'000, 60'000}}; },
       concat({{startEvent(0)}, activityAt({50'000, 100'000, 150'000}), {sessionEvent(200'000, Type::tick)}}),
       State::active, std::nullopt, {.active = 140'000, .breaks = 60'000}},
      {"continuing passive work holds off idle up to its own threshold",
       [](WorkingSessionPolicy& p) { p.passiveIdleThresholdMS = 300'000; },
       {startEvent(0), passiveEvent(30'000, true, "call"), passiveEvent(90'000, true, "call"),
        sessionEvent(100'000, Type::tick)},
       State::active, std::nullopt, {.active = 100'000}},
      {"passive work with a new continuity token does not", [](WorkingSessionPolicy& p) { p.passiveIdleThresholdMS = 300'000; },
       {startEvent(0), passiveEvent(30'000, true, "call"), passiveEvent(90'000, true, "other"),
        sessionEvent(100'000, Type::tick)},
       State::possibleIdle, std::nullopt, {.active = 90'000, .idle = 10'000}},
      {"completion ends the timeline", unchanged, {startEvent(0), sessionEvent(30'000, Type::complete)},
       State::completed, std::nullopt, {.active = 30'000}},
  };
  for (const Scenario& scenario : scenarios) {
    SCOPED_TRACE(scenario.name);
    WorkingSessionPolicy policy = sessionTestPolicy();
    scenario.edit(policy);
    const WorkingSessionEngine engine = run(policy, scenario.events);
    const WorkingSessionSnapshot snapshot = engine.snapshot();
    EXPECT_EQ(snapshot.state, scenario.state);
    EXPECT_EQ(snapshot.suspensionReason, scenario.reason);
    const Totals& t = scenario.totals;  // active, provisional, idle, break, unverified, violation
    EXPECT_EQ((std::array{snapshot.candidateActiveMS - snapshot.provisionalMS, snapshot.provisionalMS, snapshot.idleMS,
                          snapshot.breakMS, snapshot.unverifiedMS, snapshot.violationMS}),
              (std::array{t.active, t.provisional, t.idle, t.breaks, t.unverified, t.violation}));
    EXPECT_EQ(snapshot.elapsedMS, scenario.events.back().at - scenario.events.front().at);
  }
}

struct Refusal {
  const char* name;
  std::vector<WorkingSessionEvent> before;
  WorkingSessionEvent refused;
  WorkingSessionError expected;
  bool leavesEngineUnchanged;
};

TEST(WorkingSessionEngineTest, RefusesWhatTheLifecycleAndClockDoNotAllow) {
  const auto notReady = WorkingSessionError{ErrorKind::notReady, {Reason::displaySleeping, Reason::appBlockingUnavailable}};
  const std::vector<Refusal> refusals = {
      {"a start with the display asleep and the app blocker not ready", {},
       startEvent(0, {true, true, false, false, true, true, true}), notReady, true},
      {"an observation one millisecond earlier than the last", {startEvent(1'000), sessionEvent(5'000, Type::tick)},
       sessionEvent(4'999, Type::tick), {ErrorKind::clockMovedBackwards, {}}, true},
      {"a negative instant", {startEvent(1'000)}, sessionEvent(-1, Type::tick), {ErrorKind::invalidClock, {}}, true},
      {"an instant past the end of time", {startEvent(1'000)}, sessionEvent(8'640'000'000'000'001, Type::tick),
       {ErrorKind::invalidClock, {}}, true},
      {"an instant more than 366 days after the start", {startEvent(1'000)},
       sessionEvent(1'000 + 31'622'400'001, Type::tick), {ErrorKind::invalidClock, {}}, true},
      {"a second start", {startEvent(0)}, startEvent(10), {ErrorKind::alreadyStarted, {}}, true},
      {"activity before the start", {}, sessionEvent(0, Type::activity), {ErrorKind::notStarted, {}}, true},
      {"anything after completion", {startEvent(0), sessionEvent(10, Type::complete)}, sessionEvent(20, Type::tick),
       {ErrorKind::alreadyCompleted, {}}, true},
      {"a resume while working", {startEvent(0)}, sessionEvent(10, Type::resume), {ErrorKind::cannotResume, {}}, false},
      {"a resume while still locked", {startEvent(0), sessionEvent(10, Type::lock)}, sessionEvent(20, Type::resume),
       {ErrorKind::cannotResume, {}}, false},
      {"a manual break while suspended", {startEvent(0), sessionEvent(10, Type::handoff)},
       sessionEvent(20, Type::manualBreak), {ErrorKind::cannotResume, {}}, false},
  };
  for (const Refusal& refusal : refusals) {
    SCOPED_TRACE(refusal.name);
    WorkingSessionEngine engine = run(sessionTestPolicy(), refusal.before);
    const WorkingSessionEngine before = engine;
    const auto outcome = engine.observe(refusal.refused);
    ASSERT_FALSE(outcome.has_value());
    EXPECT_EQ(outcome.error(), refusal.expected);
    if (refusal.leavesEngineUnchanged) {
      EXPECT_EQ(engine, before);
    }
  }
}

TEST(WorkingSessionEngineTest, RefusesInvalidIdentifiersAndPolicies) {
  EXPECT_EQ(WorkingSessionEngine::make("", "mac-1", sessionTestPolicy()).error().kind, ErrorKind::invalidIdentifier);
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac 1", sessionTestPolicy()).error().kind, ErrorKind::invalidIdentifier);
  WorkingSessionPolicy noIdle = sessionTestPolicy();
  noIdle.idleThresholdMS.reset();
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac-1", noIdle).error().kind, ErrorKind::invalidPolicy);
  noIdle.allowsIdleDisabled = true;
  EXPECT_TRUE(WorkingSessionEngine::make("s1", "mac-1", noIdle).has_value());
  WorkingSessionPolicy zeroDebounce = sessionTestPolicy();
  zeroDebounce.resumeDebounceMS = 0;
  EXPECT_EQ(WorkingSessionEngine::make("s1", "mac-1", zeroDebounce).error().kind, ErrorKind::invalidPolicy);
}

TEST(WorkingSessionEngineTest, ReportsThePomodoroPhaseRemainingTimeAndCycle) {
  WorkingSessionPolicy policy = sessionTestPolicy();
  policy.pomodoro = {{120'000, 60'000}};
  policy.pomodoroOffsetMS = 30'000;
  const struct {
    UnixMillis at;
    WorkingSessionSnapshot::PomodoroPhase phase;
    std::int64_t remaining;
    std::int64_t cycle;
  } cases[] = {
      // The shared cycle repeats backwards before its offset start.
      {0, WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak, 30'000, -1},
      {30'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroWork, 120'000, 0},
      {160'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroBreak, 50'000, 0},
      {220'000, WorkingSessionSnapshot::PomodoroPhase::pomodoroWork, 110'000, 1},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.at);
    WorkingSessionEngine engine = run(policy, {startEvent(0)});
    if (expected.at > 0) {
      ASSERT_TRUE(engine.observe(sessionEvent(expected.at, Type::activity)).has_value());
    }
    const auto snapshot = engine.snapshot();
    EXPECT_EQ(snapshot.pomodoroPhase, expected.phase);
    EXPECT_EQ(snapshot.pomodoroRemainingMS, expected.remaining);
    EXPECT_EQ(snapshot.pomodoroCycleIndex, expected.cycle);
  }
}

TEST(WorkingSessionEngineTest, ChoosesTheStatusLinesFromTheEngineState) {
  WorkingSessionPolicy phone = sessionTestPolicy();
  phone.requiresPhoneProtection = true;
  WorkingSessionPolicy pomodoro = sessionTestPolicy();
  pomodoro.pomodoro = {{120'000, 60'000}};
  const WorkingSessionPolicy policy = sessionTestPolicy();
  const std::string_view counting = "Mac’in kaydettiği süre sayılıyor.";
  const std::string_view current = "Koruma bu kovi’in kurallarına uygun ve güncel.";
  const struct {
    const char* name;
    WorkingSessionPolicy policy;
    std::vector<WorkingSessionEvent> events;
    std::optional<std::string_view> status;
    std::string_view protection;
  } cases[] = {
      {"not ready yet", phone, {readinessEvent(0, {true, true, true, true, true, false, true})},
       "Mac hazır olunca çalışma başlar. Henüz süre sayılmıyor.",
       "Bu kovi için iPhone koruması hazır değil. Koruma geçerli olana kadar yeni süre sayılmaz."},
      {"ready, not started", policy, {readinessEvent(0, allReady())}, "Başlangıç bekleniyor", "Koruma kontrol edilmeli"},
      {"counting", policy, {startEvent(0)}, counting, current},
      {"offline within the limit", policy,
       {startEvent(0), transportEvent(1'000, Transport::offlineLocal), sessionEvent(10'000, Type::activity)}, counting,
       "Koruma ayarlandı ama doğrulama henüz gelmedi. Durumu yeniden kontrol et."},
      {"offline past the limit", policy,
       {startEvent(0), transportEvent(1'000, Transport::offlineLocal), sessionEvent(50'000, Type::activity),
        sessionEvent(91'000, Type::activity)},
       "Son doğrulama güncel değil. Bu aralıkta geçen süre kabul edilene kadar sayılmaz.",
       "Koruma doğrulaması güncel değil. Yeniden kontrol edilene kadar yeni süre sayılmaz."},
      {"pomodoro work", pomodoro, {startEvent(0)}, "Pomodoro · çalışma aralığı", current},
      {"pomodoro break", pomodoro,
       {startEvent(0), sessionEvent(50'000, Type::activity), sessionEvent(100'000, Type::activity),
        sessionEvent(121'000, Type::activity)},
       "Pomodoro · planlı mola", current},
      {"on a break", policy, {startEvent(0), sessionEvent(1'000, Type::manualBreak)},
       "Şu an çalışma sayılmıyor. Devam ettiğinde yalnızca yeni doğrulanan süre eklenir.", current},
      {"suspended", policy, {startEvent(0), sessionEvent(1'000, Type::handoff)}, "Doğrulanamıyor", current},
      {"completed", policy, {startEvent(0), sessionEvent(1'000, Type::complete)}, std::nullopt,
       "Koruma hâlâ açık. Kovi’i açınca yeniden doğrulanır."},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.name);
    const WorkingSessionEngine engine = run(expected.policy, expected.events);
    EXPECT_EQ(workingSessionStatusLine(engine), expected.status);
    EXPECT_EQ(workingProtectionStatusLine(engine), expected.protection);
  }
}

TEST(WorkingSessionEngineTest, ExplainsWhyTheCurrentTimeIsExcluded) {
  const struct { std::vector<WorkingSessionEvent> events; std::optional<std::string_view> reason; } cases[] = {
      {{startEvent(0)}, std::nullopt},
      {{startEvent(0), sessionEvent(1'000, Type::lock)},
       "Gerekli cihaz koşullarının doğrulanamadığı aralıklar çalışma süresine eklenmedi."},
      {{startEvent(0), readinessEvent(1'000, {true, true, true, false, true, true, true})},
       "Gerekli odak koruması hazır olmayan süre çalışma sayılmadı."},
      {{startEvent(0), sessionEvent(1'000, Type::handoff)},
       "Mac değişimi sırasındaki doğrulanamayan aralık çalışma sayılmadı."},
      {{startEvent(0), sessionEvent(1'000, Type::violation)}, "Odak koşullarının sağlanmadığı süre çalışma sayılmadı."},
      {{startEvent(0), sessionEvent(1'000, Type::persistenceFailure)},
       "Oturum kayıtlarının tutarlılığı doğrulanamadı; bu kayıttan çalışma süresi kabul edilmedi."},
      {{startEvent(0), sessionEvent(1'000, Type::remoteBreak)},
       "Uzaktan mola komutunun etkilediği süre çalışma sayılmadı."},
      // The user's own break, even when asked for during a remote one, is not the command's.
      {{startEvent(0), sessionEvent(1'000, Type::remoteBreak), sessionEvent(2'000, Type::manualBreak)},
       "Odak koşullarının sağlanmadığı süre çalışma sayılmadı."},
  };
  for (const auto& expected : cases) {
    EXPECT_EQ(workingExclusionReason(run(sessionTestPolicy(), expected.events)), expected.reason);
  }
}

}  // namespace
}  // namespace kovi
