// What replaying a recorded session costs: a 10-hour session observed once a
// second (36,001 events: input in bursts, idle stretches, a lock, offline
// minutes, a manual break) decoded and run through the engine, against
// decoding the same events alone. Both run in the same process, one after the
// other, and the closing line gives the ratio of their medians (target: at
// most 2x).
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>
#include <string>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "bench/BenchMedianRatio.h"

namespace {

constexpr std::int64_t kStartMS = 1'772'431'200'000;
constexpr int kSeconds = 10 * 3600;

std::string buildSession() {
  using nlohmann::json;
  const json ready = {{"activityMonitoring", true}, {"deviceUnlocked", true}, {"displayAwake", true},
                      {"appBlocking", true},        {"websiteBlocking", true}, {"phoneProtection", true},
                      {"serverLease", true}};
  json events = json::array();
  events.push_back({{"at", kStartMS}, {"type", "start"}, {"readiness", ready}});
  for (int second = 1; second <= kSeconds; ++second) {
    const std::int64_t at = kStartMS + std::int64_t{second} * 1000;
    const int minuteOfHour = (second / 60) % 60;
    json event = {{"at", at}, {"type", "tick"}};
    if (minuteOfHour < 40 && second % 3 != 0) event["type"] = "activity";  // work, then a 20-minute lull
    if (second % 3600 == 1800) event["type"] = "lock";
    if (second % 3600 == 1860) event["type"] = "unlock";
    if (second % 7200 == 600) event = {{"at", at}, {"type", "transport"}, {"state", "offlineLocal"}};
    if (second % 7200 == 900) event = {{"at", at}, {"type", "transport"}, {"state", "reconciled"}};
    if (second % 10800 == 2700) event["type"] = "manualBreak";
    events.push_back(event);
  }
  const json policy = {{"idleThresholdMS", 120000},  {"allowsIdleDisabled", false},   {"resumeMode", "automatic"},
                       {"resumeDebounceMS", 10000},  {"resumeMaximumInputGapMS", 5000}, {"hardWindowMS", nullptr},
                       {"maximumObservationGapMS", 60000}, {"requiresAppBlocking", true},
                       {"requiresWebsiteBlocking", false}, {"requiresPhoneProtection", false},
                       {"requiresServerLease", true}, {"passiveIdleThresholdMS", nullptr},
                       {"pomodoro", {{"workMS", 1500000}, {"breakMS", 300000}}}, {"pomodoroOffsetMS", nullptr}};
  return json{{"policy", policy}, {"sessionID", "bench"}, {"deviceID", "mac-1"}, {"events", events}}.dump();
}

const std::string& session() {
  static const std::string text = buildSession();
  return text;
}

void decodeEventsAlone(benchmark::State& state) {
  for (auto _ : state) {
    auto document = kovi::parseJson(session());
    if (!document) state.SkipWithError("the session is not JSON");
    const kovi::JsonView root(*document);
    auto events = kovi::decodeWorkingSessionEvents(root.member("events").value());
    if (!events) state.SkipWithError("the events do not decode");
    benchmark::DoNotOptimize(events);
  }
}

void replay(benchmark::State& state) {
  for (auto _ : state) {
    auto decoded = kovi::decodeWorkingSessionReplay(session());
    if (!decoded) state.SkipWithError("the session does not decode");
    for (const auto& event : decoded->events) benchmark::DoNotOptimize(decoded->engine.observe(event));
    benchmark::DoNotOptimize(decoded->engine.snapshot());
  }
}


}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (auto* registered : {benchmark::RegisterBenchmark("decode_events", decodeEventsAlone),
                           benchmark::RegisterBenchmark("replay_session", replay)}) {
    registered->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
  }
  kovi::bench::MedianKeeper keeper;
  benchmark::RunSpecifiedBenchmarks(&keeper);
  benchmark::Shutdown();
  return keeper.printRatio("replay_session", "decode_events", 2) ? 0 : 1;
}
