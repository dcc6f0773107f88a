// `kovi working session`: run the work-session engine over a recorded
// session (`replay`) or over this desktop's real signals (`watch`).
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingDesktopObserver.h"
#include "KoviKit/working/WorkingSessionCoding.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "KoviKit/working/WorkingSessionStatus.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"
#include "tools/kovi/NumberOptions.h"
#include "tools/kovi/platform/DesktopSignals.h"

namespace kovi::tool {
namespace {

using Json = nlohmann::ordered_json;

// One trace line: the event, whether the engine took it, and where it left
// the session.
Json traceLine(const WorkingSessionEvent& event, const std::expected<void, WorkingSessionError>& outcome,
               const WorkingSessionEngine& engine) {
  Json line = Json::object();
  line["at"] = event.at;
  line["type"] = enumName(event.type);
  line["ok"] = outcome.has_value();
  line["error"] = outcome ? Json(nullptr) : Json(enumName(outcome.error().kind));
  if (!outcome && outcome.error().kind == WorkingSessionError::Kind::notReady) {
    line["reasons"] = encodeValue(outcome.error().reasons);
  } else {
    line["reasons"] = nullptr;
  }
  line["state"] = enumName(engine.state());
  line["suspensionReason"] = encodeValue(engine.suspensionReason());
  return line;
}

void addReplayCommand(CLI::App& session) {
  auto file = std::make_shared<std::string>();
  auto trace = std::make_shared<bool>(false);
  CLI::App* command = session.add_subcommand(
      "replay",
      "Run a recorded session through the engine and print its final snapshot as one JSON object.\n"
      "FILE: {\"rules\": <rule set> | \"policy\": <session policy>, \"sessionID\", \"deviceID\",\n"
      "\"events\": [{\"at\": <Unix ms>, \"type\": \"start\", \"readiness\": {seven flags}}, ...]}.\n"
      "Event types: start, readiness, activity, tick, sleep, wake, lock, unlock, displaySleep,\n"
      "displayWake, manualBreak, remoteBreak (a break a remote command imposed), resume, passive (eligible, continuityToken), transport (state),\n"
      "restart, persistenceFailure, handoff, violation, complete. A refused event does not stop the\n"
      "replay. Exit 0 when it ran; 2 when FILE does not decode (the key path and why are printed).");
  command->add_option("FILE", *file, "The recorded session as JSON, or - for standard input")->required();
  command->add_flag("--trace", *trace,
                    "Before the snapshot, print one JSON line per event: {\"at\", \"type\", \"ok\", \"error\",\n"
                    "\"reasons\" (for notReady), \"state\", \"suspensionReason\"}");
  command->callback([file, trace] {
    const auto text = readInput(*file);
    if (!text) {
      std::cerr << "kovi: " << text.error() << '\n';
      exitStatus() = 2;
      return;
    }
    auto replay = decodeWorkingSessionReplay(*text);
    if (!replay) {
      std::cerr << "kovi: " << *file << ": " << replay.error().message() << '\n';
      exitStatus() = 2;
      return;
    }
    for (const WorkingSessionEvent& event : replay->events) {
      const auto outcome = replay->engine.observe(event);
      if (*trace) std::cout << traceLine(event, outcome, replay->engine).dump() << '\n';
    }
    std::cout << encodeRecord(replay->engine.snapshot()).dump() << '\n';
  });
}

volatile std::sig_atomic_t watchStopRequested = 0;

void requestWatchStop(int) { watchStopRequested = 1; }

UnixMillis wallClockNow() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

struct WatchOptions {
  std::string rulesFile;
  std::string sessionID;
  std::string deviceID;
  int pollMS = 500;
};

// The engine for the watched session, or nothing after reporting why (exit 2
// for input that does not decode or identifiers the engine refuses, 1 for
// refused rules and rules no session can run under).
std::optional<WorkingSessionEngine> watchedEngine(const WatchOptions& options) {
  const auto text = readInput(options.rulesFile);
  if (!text) {
    std::cerr << "kovi: " << text.error() << '\n';
    exitStatus() = 2;
    return std::nullopt;
  }
  const auto rules = decodeWorkingRules(*text);
  if (!rules) {
    std::cerr << "kovi: " << options.rulesFile << ": " << rules.error().reason << '\n';
    // A rule set that decodes but fails its value checks is refused (1); one
    // that does not decode is unusable input (2).
    exitStatus() = rules.error().stage == WorkingRulesDecodeError::Stage::validation ? 1 : 2;
    return std::nullopt;
  }
  auto policy = WorkingSessionPolicy::fromRules(*rules);
  if (!policy) {
    std::cerr << "kovi: " << options.rulesFile << ": no session can run under these rules ("
              << enumName(policy.error().kind) << ")\n";
    exitStatus() = 1;
    return std::nullopt;
  }
  auto engine = WorkingSessionEngine::make(options.sessionID, options.deviceID, std::move(*policy));
  if (!engine) {
    std::cerr << "kovi: --session and --device take 1 to 128 letters, digits or _.:-\n";
    exitStatus() = 2;
    return std::nullopt;
  }
  return std::move(*engine);
}

void watch(const WatchOptions& options) {
  auto engine = watchedEngine(options);
  if (!engine) return;
  DesktopSignals desktop = openDesktopSignals();
  for (const std::string& source : desktop.unavailable) std::cerr << "kovi: unavailable: " << source << '\n';
  watchStopRequested = 0;
  std::signal(SIGINT, requestWatchStop);
  std::signal(SIGTERM, requestWatchStop);

  WorkingDesktopObserver observer;
  std::optional<std::pair<WorkingSessionState, std::optional<std::string_view>>> shown;
  while (true) {
    const UnixMillis now = wallClockNow();
    const WorkingDesktopReading reading = desktop.signals->read();
    for (const WorkingSessionEvent& event : observer.observe(reading, now)) {
      const auto outcome = engine->observe(event);
      if (!outcome && outcome.error().kind == WorkingSessionError::Kind::clockMovedBackwards) {
        std::cerr << "kovi: the wall clock moved backwards; the reading is ignored\n";
      }
    }
    // A session waiting for this Mac starts as soon as its readiness allows.
    if (engine->state() == WorkingSessionState::preparing) {
      WorkingSessionEvent start{now, WorkingSessionEvent::Type::start, WorkingDesktopObserver::readinessOf(reading), {}, {}};
      (void)engine->observe(start);
    }
    const std::pair current{engine->state(), workingSessionStatusLine(*engine)};
    if (current != shown) {
      std::cerr << enumName(current.first) << ": " << current.second.value_or("") << std::endl;
      shown = current;
    }
    if (watchStopRequested) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(options.pollMS));
  }
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
  std::cout << encodeRecord(engine->snapshot()).dump() << std::endl;
}

void addWatchCommand(CLI::App& session) {
  auto options = std::make_shared<WatchOptions>();
  CLI::App* command = session.add_subcommand(
      "watch",
      "Run a session on this machine's real signals until Ctrl-C: input idle time (X11 XScreenSaver),\n"
      "display power (DPMS), screen lock and sleep (logind over the system D-Bus). A signal that cannot\n"
      "be read counts as not ready, which suspends the session; protections this desktop does not run\n"
      "(app and website blocking, iPhone protection, a server lease) count as not ready too. Prints\n"
      "\"<state>: <status line>\" on stderr whenever either changes, and the snapshot as JSON on stdout\n"
      "on exit. Exit 0 after Ctrl-C; 1 for refused rules or rules no session can run under; 2 for\n"
      "undecodable rules or invalid identifiers.");
  command->add_option("--rules", options->rulesFile, "The kovi's working rule set as JSON, or - for standard input")
      ->required();
  command->add_option("--session", options->sessionID, "The session's identifier")->required();
  command->add_option("--device", options->deviceID, "This Mac's device identifier")->required();
  addIntegerOption(command, "--poll-ms", options->pollMS, "How often the desktop is read, in milliseconds", 50,
                   10'000);
  command->callback([options] { watch(*options); });
}

}  // namespace

void addWorkingSessionCommands(CLI::App& app) {
  CLI::App& working = commandGroup(app, "working", "Work sessions: rules in force, the session engine and its records");
  CLI::App* session = working.add_subcommand("session", "Run the work-session engine");
  session->require_subcommand(1);
  addReplayCommand(*session);
  addWatchCommand(*session);
}

}  // namespace kovi::tool
