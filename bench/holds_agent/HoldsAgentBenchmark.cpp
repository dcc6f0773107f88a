// The holds agent on a private X11 desktop (Xvfb, openbox), running the real
// kovi-holds on its demo schedule with a stand-in Discord (held) and
// stand-ins for Firefox and VS Code (never held by the demo schedule).
//
// - Activation to hidden: the held window is brought to the front as a task
//   bar would; measured until the window manager unmaps it again (iconic).
//   Baseline: bringing the browser to the front until the window manager
//   reports it active, the window manager's own share of the round trip.
// - Idle CPU: the agent's CPU time over a quiet stretch (default 60 s) with
//   the hold in force. Baseline: the stand-in, an idle Xlib client.
// - Memory: the agent's resident set with the shield shown. Baseline: the
//   stand-in's.
//
//   bench_holds_agent [--idle-seconds N] [Google Benchmark flags]
#include <benchmark/benchmark.h>

#include <X11/Xutil.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
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

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"
#include "bench/holds_agent/HoldsAgentMeasures.h"

namespace {

using kovi::holds::x11::ChildProcess;
using kovi::holds::x11::PrivateDesktop;
using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kSettle{10000};

struct Stage {
  std::filesystem::path scratch;
  std::optional<PrivateDesktop> desktop;
  std::optional<ChildProcess> discord;
  std::optional<ChildProcess> firefox;
  std::optional<ChildProcess> editor;
  std::optional<ChildProcess> agent;
  Window discordWindow = None;
  Window firefoxWindow = None;
  Window editorWindow = None;
};

Stage* gStage = nullptr;
std::vector<double> gHeld;        // activation → iconic, ms
std::vector<double> gShownHidden; // window manager shows it → iconic, ms
std::vector<double> gPlain;       // activation → active, ms

[[noreturn]] void fail(const std::string& message) {
  std::cerr << "bench_holds_agent: " << message << '\n';
  std::exit(1);
}

Window startStandIn(Stage& stage, std::optional<ChildProcess>& process, const char* instance, const char* name) {
  const auto output = stage.scratch / (std::string(instance) + ".out");
  auto started = ChildProcess::start({KOVI_STAND_IN_APP, "--class", instance, "--name", name},
                                     {{"DISPLAY", stage.desktop->displayName()}}, output);
  if (!started) fail(started.error());
  process.emplace(std::move(*started));
  Window window = None;
  const bool mapped = stage.desktop->waitUntilSettled(
      [&] {
        std::ifstream in(output);
        std::string line;
        if (!std::getline(in, line) || line.empty()) return false;
        window = std::stoul(line, nullptr, 16);
        return true;
      },
      kSettle);
  if (!mapped) fail(std::string(instance) + " did not map its window");
  return window;
}

void setUp(Stage& stage) {
  if (!PrivateDesktop::isAvailable()) fail("Xvfb and openbox are needed");
  char pattern[] = "/tmp/kovi-bench-XXXXXX";
  if (mkdtemp(pattern) == nullptr) fail("no scratch directory");
  stage.scratch = pattern;
  auto desktop = PrivateDesktop::start(stage.scratch);
  if (!desktop) fail(desktop.error());
  stage.desktop.emplace(std::move(*desktop));
  stage.editorWindow = startStandIn(stage, stage.editor, "code", "Code");
  stage.firefoxWindow = startStandIn(stage, stage.firefox, "Navigator", "firefox");
  stage.discordWindow = startStandIn(stage, stage.discord, "discord", "discord");
  std::filesystem::create_directories(stage.scratch / "runtime");
  std::filesystem::permissions(stage.scratch / "runtime", std::filesystem::perms::owner_all);
  auto agent = ChildProcess::start({KOVI_HOLDS_BINARY, "run", "--demo"},
                                   {{"DISPLAY", stage.desktop->displayName()},
                                    {"XDG_DATA_HOME", (stage.scratch / "data").string()},
                                    {"XDG_RUNTIME_DIR", (stage.scratch / "runtime").string()}},
                                   std::nullopt, stage.scratch / "agent.log");
  if (!agent) fail(agent.error());
  stage.agent.emplace(std::move(*agent));
  if (!stage.desktop->waitUntilSettled([&] { return stage.desktop->wmState(stage.discordWindow) == IconicState; },
                                       kSettle)) {
    fail("the agent did not hide the held window");
  }
}

// Waits for the next event that `accept` takes, up to the settle time.
bool nextEvent(Display* display, const std::function<bool(const XEvent&)>& accept) {
  const auto deadline = Clock::now() + kSettle;
  while (Clock::now() < deadline) {
    while (XPending(display) > 0) {
      XEvent event;
      XNextEvent(display, &event);
      if (accept(event)) return true;
    }
    pollfd fd{ConnectionNumber(display), POLLIN, 0};
    poll(&fd, 1, 10);
  }
  return false;
}

double millisSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void BM_HeldWindowActivationToHidden(benchmark::State& state) {
  auto& desktop = *gStage->desktop;
  Display* display = desktop.display().get();
  const Window held = gStage->discordWindow;
  XSelectInput(display, held, StructureNotifyMask);
  for (auto _ : state) {
    // Each round starts where a person would: the held window hidden, the shield in front.
    const bool ready = desktop.waitUntilSettled(
        [&] {
          const auto shields = desktop.clientsOfClass("KoviHolds");
          return desktop.wmState(held) == IconicState && !shields.empty() && desktop.activeWindow() == shields.front();
        },
        kSettle);
    if (!ready) {
      state.SkipWithError("the shield did not come to the front");
      break;
    }
    // Let the agent finish bringing the shield forward: a request of its own
    // still on the way would take the focus back from the next activation.
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    XSync(display, True);  // start from an empty queue
    const auto start = Clock::now();
    desktop.activate(held);
    // The window manager maps the window to show it and unmaps it to iconify it.
    std::optional<Clock::time_point> shown;
    const bool hidden = nextEvent(display, [&](const XEvent& event) {
      if (event.type == MapNotify && event.xmap.window == held) shown = Clock::now();
      return shown && event.type == UnmapNotify && event.xunmap.window == held;
    });
    if (!hidden) {
      std::ifstream log(gStage->scratch / "agent.log");
      std::cerr << "agent log:\n" << std::string(std::istreambuf_iterator<char>(log), {});
      state.SkipWithError("the held window was not hidden again");
      break;
    }
    const double total = millisSince(start);
    gHeld.push_back(total);
    gShownHidden.push_back(total - std::chrono::duration<double, std::milli>(*shown - start).count());
    state.SetIterationTime(total / 1000);
  }
}

void BM_PlainActivation(benchmark::State& state) {
  auto& desktop = *gStage->desktop;
  Display* display = desktop.display().get();
  const Atom active = desktop.display().atoms().netActiveWindow;
  XSelectInput(display, desktop.display().root(), PropertyChangeMask);
  for (auto _ : state) {
    XSync(display, True);
    const auto start = Clock::now();
    desktop.activate(gStage->firefoxWindow);
    const bool activated = nextEvent(display, [&](const XEvent& event) {
      return event.type == PropertyNotify && event.xproperty.atom == active &&
             desktop.activeWindow() == gStage->firefoxWindow;
    });
    if (!activated) {
      state.SkipWithError("the browser did not come to the front");
      break;
    }
    gPlain.push_back(millisSince(start));
    state.SetIterationTime(gPlain.back() / 1000);
    // Another application the demo never holds in front again, so the next
    // activation is a change and the agent has nothing to do in between.
    desktop.activate(gStage->editorWindow);
    nextEvent(display, [&](const XEvent& event) {
      return event.type == PropertyNotify && event.xproperty.atom == active &&
             desktop.activeWindow() != gStage->firefoxWindow;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
}

BENCHMARK(BM_HeldWindowActivationToHidden)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(BM_PlainActivation)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace

int main(int argc, char** argv) {
  using namespace kovi::holds::bench;
  const int idleSeconds = initializeBenchmarks(argc, argv);

  Stage stage;
  setUp(stage);
  gStage = &stage;
  benchmark::RunSpecifiedBenchmarks();

  std::printf("shown to hidden (the agent's reaction and the iconify): p50 %.2f ms, p95 %.2f ms\n",
              percentile(gShownHidden, 0.5), percentile(gShownHidden, 0.95));
  // The held window once more, so the shield is up; then the agent only waits.
  stage.desktop->activate(stage.discordWindow);
  auto shieldShown = [&] {
    const auto shields = stage.desktop->clientsOfClass("KoviHolds");
    return !shields.empty() && stage.desktop->isViewable(shields.front());
  };
  stage.desktop->waitUntilSettled(shieldShown, kSettle);
  printClosingReport({.held = gHeld,
                      .plain = gPlain,
                      .agent = stage.agent->pid(),
                      .baseline = stage.discord->pid(),
                      .baselineName = "idle Xlib client",
                      .idleSeconds = idleSeconds,
                      .shieldShown = shieldShown});

  stage.agent.reset();
  stage.discord.reset();
  stage.firefox.reset();
  stage.editor.reset();
  stage.desktop.reset();
  std::filesystem::remove_all(stage.scratch);
  return 0;
}
