// `kovi working session`: run the work-session engine over a recorded
// session (`replay`) or over this desktop's real signals (`watch`).
#include <iostream>
#include <memory>
#include <string>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingSessionCoding.h"
#include "KoviKit/working/WorkingSessionReplay.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

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
      "displayWake, manualBreak, resume, passive (eligible, continuityToken), transport (state),\n"
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

}  // namespace

void addWorkingSessionCommands(CLI::App& app) {
  CLI::App& working = commandGroup(app, "working", "Work sessions: rules in force, the session engine and its records");
  CLI::App* session = working.add_subcommand("session", "Run the work-session engine");
  session->require_subcommand(1);
  addReplayCommand(*session);
}

}  // namespace kovi::tool
