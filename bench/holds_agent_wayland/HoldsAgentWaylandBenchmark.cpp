// The holds agent on headless sway, running the real kovi-holds on its demo
// schedule with a stand-in Discord (held) and stand-ins for Firefox and VS
// Code (never held by the demo schedule), each a foot terminal with that
// app_id. sway ignores minimise, so the agent hides by moving the
// application's windows to the scratchpad.
//
// - Activation to hidden: the held window is taken out of the scratchpad,
//   which brings it to the front; measured until sway shows it back in the
//   scratchpad. Baseline: focusing the browser until sway reports it
//   focused, the compositor's own share of the round trip.
// - Idle CPU: the agent's CPU time over a quiet stretch (default 60 s) with
//   the hold in force. Baseline: a stand-in terminal, an idle Wayland client.
// - Memory: the agent's resident set with the shield shown. Baseline: the
//   stand-in's.
//
//   bench_holds_agent_wayland [--idle-seconds N] [Google Benchmark flags]
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "KoviMacHolds/platform/wayland/demo/PrivateSway.h"
#include "bench/holds_agent/HoldsAgentMeasures.h"

namespace {

using kovi::holds::wayland::ChildProcess;
using kovi::holds::wayland::PrivateSway;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSettle{10000};

struct Stage {
  std::filesystem::path scratch;
  std::optional<PrivateSway> sway;
  std::optional<ChildProcess> discord;
  std::optional<ChildProcess> firefox;
  std::optional<ChildProcess> editor;
  std::optional<ChildProcess> agent;
};

Stage* gStage = nullptr;
std::vector<double> gHeld;   // scratchpad show → back in the scratchpad, ms
std::vector<double> gPlain;  // focus command → focused, ms

[[noreturn]] void fail(const std::string& message) {
  std::cerr << "bench_holds_agent_wayland: " << message << '\n';
  std::exit(1);
}

bool waitFor(const std::function<bool()>& condition) { return kovi::holds::x11::waitUntil(condition, kSettle); }

void startStandIn(Stage& stage, std::optional<ChildProcess>& process, const std::string& appId) {
  auto started = stage.sway->startStandIn(appId);
  if (!started) fail(started.error());
  process.emplace(std::move(*started));
  if (!waitFor([&] { return stage.sway->window(appId).has_value(); })) fail(appId + " did not map its window");
}

bool hidden(const std::string& appId) {
  const auto window = gStage->sway->window(appId);
  return window && window->inScratchpad;
}

bool shieldShown() {
  const auto paper = gStage->sway->colorAt((PrivateSway::width - 480) / 2 + 6, PrivateSway::height / 2);
  return paper && *paper == kovi::holds::wayland::SwayColor{245, 240, 234};
}

bool focused(const std::string& appId) {
  const auto window = gStage->sway->window(appId);
  return window && window->focused;
}

void setUp(Stage& stage) {
  if (!PrivateSway::isAvailable()) fail("sway, foot and grim are needed");
  char pattern[] = "/tmp/kovi-bench-XXXXXX";
  if (mkdtemp(pattern) == nullptr) fail("no scratch directory");
  stage.scratch = pattern;
  std::filesystem::create_directories(stage.scratch / "data");
  auto sway = PrivateSway::start(stage.scratch);
  if (!sway) fail(sway.error());
  stage.sway.emplace(std::move(*sway));
  startStandIn(stage, stage.editor, "code");
  startStandIn(stage, stage.firefox, "firefox");
  startStandIn(stage, stage.discord, "discord");
  auto agent = stage.sway->startProgram({KOVI_HOLDS_BINARY, "run", "--demo"},
                                        {{"XDG_DATA_HOME", (stage.scratch / "data").string()}}, std::nullopt,
                                        stage.scratch / "agent.log");
  if (!agent) fail(agent.error());
  stage.agent.emplace(std::move(*agent));
  if (!waitFor([] { return hidden("discord"); })) fail("the agent did not hide the held window");
}

double millisSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Polls sway's tree until `condition` holds; sway answers a tree request in
// well under a millisecond here.
bool poll(const std::function<bool()>& condition) {
  const auto deadline = Clock::now() + kSettle;
  while (Clock::now() < deadline) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::microseconds(500));
  }
  return false;
}

void BM_HeldWindowActivationToHidden(benchmark::State& state) {
  auto& sway = *gStage->sway;
  for (auto _ : state) {
    // Each round starts where a person would: the held application hidden,
    // another one brought to the front, which puts the shield away. sway
    // reports only changes of the activated window, and after a hide it
    // hands the focus back to a window of its choosing, so whichever of the
    // editor and the browser is not in front is brought there.
    const bool away = std::ranges::any_of(std::array{"code", "firefox"}, [&](const char* other) {
      return sway.command("[app_id=\"" + std::string(other) + "\"] focus") &&
             kovi::holds::x11::waitUntil([] { return hidden("discord") && !shieldShown(); },
                                         std::chrono::milliseconds(1500));
    });
    if (!away) {
      state.SkipWithError("bringing another application to the front did not put the shield away");
      break;
    }
    const auto start = Clock::now();
    if (!sway.command("[app_id=\"discord\"] scratchpad show")) {
      state.SkipWithError("sway did not show the held window");
      break;
    }
    if (!poll([] { return hidden("discord"); })) {
      std::ifstream log(gStage->scratch / "agent.log");
      std::cerr << "agent log:\n" << std::string(std::istreambuf_iterator<char>(log), {});
      state.SkipWithError("the held window was not hidden again");
      break;
    }
    gHeld.push_back(millisSince(start));
    state.SetIterationTime(gHeld.back() / 1000);
  }
}

void BM_PlainActivation(benchmark::State& state) {
  auto& sway = *gStage->sway;
  for (auto _ : state) {
    const auto start = Clock::now();
    if (!sway.command("[app_id=\"firefox\"] focus") || !poll([] { return focused("firefox"); })) {
      state.SkipWithError("the browser did not come to the front");
      break;
    }
    gPlain.push_back(millisSince(start));
    state.SetIterationTime(gPlain.back() / 1000);
    // Another application the demo never holds in front again.
    sway.command("[app_id=\"code\"] focus");
    waitFor([] { return focused("code"); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

BENCHMARK(BM_HeldWindowActivationToHidden)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(60);
BENCHMARK(BM_PlainActivation)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(100);

}  // namespace

int main(int argc, char** argv) {
  using namespace kovi::holds::bench;
  const int idleSeconds = initializeBenchmarks(argc, argv);

  Stage stage;
  gStage = &stage;
  setUp(stage);
  benchmark::RunSpecifiedBenchmarks();

  // The held window once more, so the shield is up; then the agent only waits.
  stage.sway->command("[app_id=\"code\"] focus");
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  stage.sway->command("[app_id=\"discord\"] scratchpad show");
  waitFor([] { return hidden("discord"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  printClosingReport({.desktop = " on sway",
                      .held = gHeld,
                      .plain = gPlain,
                      .agent = stage.agent->pid(),
                      .baseline = stage.discord->pid(),
                      .baselineName = "idle foot",
                      .idleSeconds = idleSeconds,
                      .shieldShown = shieldShown});

  stage.agent.reset();
  stage.discord.reset();
  stage.firefox.reset();
  stage.editor.reset();
  stage.sway.reset();
  std::filesystem::remove_all(stage.scratch);
  return 0;
}
