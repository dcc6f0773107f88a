// `kovi-holds status`: one evaluation, as the agent would make it.
#include <iostream>
#include <memory>

#include "KoviMacHolds/MacHoldsDecision.h"
#include "KoviMacHolds/cli/Commands.h"
#include "KoviMacHolds/cli/CommonOptions.h"
#include "KoviMacHolds/cli/HoldsJson.h"
#include "KoviMacHolds/cli/HoldsText.h"

namespace kovi::holds {
namespace {

struct StatusOptions {
  SnapshotOptions snapshot;
  std::optional<std::string> at;
  bool mainAppRunning = false;
};

nlohmann::ordered_json statusJson(const MacHoldsSnapshotLoad& load, const MacHoldsEvaluation& evaluation) {
  nlohmann::ordered_json json = nlohmann::ordered_json::object();
  json["snapshot"] = load ? "ok" : std::string(enumName(load.error().kind));
  json["reason"] = load ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(load.error().reason);
  json["active"] = evaluation.active;
  json["action"] = evaluation.action.kind();
  json["due"] = dueJson(evaluation.due);
  json["windows"] = windowsJson(evaluation.windows);
  json["plan"] = planJson(evaluation.plan);
  return json;
}

// "Study hold until 12:50 (local time): only study apps may come to the front."
std::string dueSentence(const MacHoldsDue& due, bool keepCommunication, Date now, const Calendar& calendar) {
  if (due.kind == MacHoldsDue::Kind::none) return "Nothing is held right now.";
  std::string sentence(holdNameText(due.kind));
  if (due.until) sentence += " until " + clockTextFrom(*due.until, now, calendar) + " (local time)";
  sentence += ": ";
  sentence += holdEffectText(due.kind);
  if (keepCommunication && due.kind == MacHoldsDue::Kind::study) sentence += "; communication apps stay usable";
  return sentence + ".";
}

// Why an active-less snapshot leaves nothing to hold.
std::string inactiveReason(const MacHoldsSnapshot& snapshot) {
  if (snapshot.stopped) return "holds are stopped on this Mac";
  if (!snapshot.examWeek) return "the schedule has neither an exam week nor everyday sleep";
  return "the exam week ended on " + snapshot.examWeek->endDay + " and there is no everyday sleep";
}

std::string statusText(const SelectedSnapshot& selected, const MacHoldsEvaluation& evaluation, bool mainAppRunning,
                       Date now, const Calendar& calendar) {
  if (!selected.load) {
    return "Nothing is held: " + snapshotProblemText(selected.load.error(), selected.source) +
           ". The agent would exit.";
  }
  const MacHoldsSnapshot& snapshot = *selected.load;
  const std::string due = dueSentence(evaluation.due, snapshot.keepCommunication, now, calendar);
  switch (evaluation.action.kind()) {
    case MacHoldsAction::Kind::exit:
      return "Nothing is held: " + inactiveReason(snapshot) + ". The agent would exit.";
    case MacHoldsAction::Kind::hold: return due;
    case MacHoldsAction::Kind::standBy: break;
  }
  if (mainAppRunning) {
    return "The main Kovi app is running and keeps the holds itself, so the agent stands by. Due now: " + due;
  }
  return due + " The agent stands by.";
}

int runStatus(const StatusOptions& options) {
  const Calendar calendar = Calendar::current();
  // The validator has already accepted the text, so it parses.
  const Date now = options.at ? Date::fromUnixMillis(static_cast<double>(*parseInstant(*options.at))) : Date::now();
  const SelectedSnapshot selected = selectSnapshot(options.snapshot, calendar.dayString(now), calendar);
  const MacHoldsEvaluation evaluation = evaluateMacHolds(selected.load, now, calendar, options.mainAppRunning);
  if (options.snapshot.json) {
    std::cout << statusJson(selected.load, evaluation).dump(2) << '\n';
  } else {
    std::cout << statusText(selected, evaluation, options.mainAppRunning, now, calendar) << '\n';
  }
  return 0;
}

}  // namespace

void addStatusCommand(CLI::App& app) {
  auto options = std::make_shared<StatusOptions>();
  CLI::App* command = app.add_subcommand(
      "status", "Evaluate the snapshot once, as the agent would: what is held now, until when, or why nothing is");
  addSnapshotOptions(*command, options->snapshot);
  command->add_option("--at", options->at, "Evaluate at TIME (ISO 8601 with an offset or Z) instead of now")
      ->check(instantValidator())
      ->type_name("TIME");
  command->add_flag("--main-app-running", options->mainAppRunning,
                    "Decide as if the main Kovi app were running (the agent then stands by)");
  command->callback([options] { exitStatus() = runStatus(*options); });
}

}  // namespace kovi::holds
