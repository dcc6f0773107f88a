// `kovi study`: the study side of focus runs.
#include <iostream>
#include <memory>

#include "KoviKit/purrl/PurrlFocusMockCalendar.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/NumberOptions.h"

namespace kovi::tool {
namespace {

void addCanStartCommand(CLI::App& study) {
  auto next = std::make_shared<PurrlFocusMockNext>();
  auto now = std::make_shared<UnixMillis>(0);
  CLI::App* command = study.add_subcommand(
      "can-start",
      "Say whether the next planned mock paper, planned to start --at, can be started --now:\n"
      "from 15 minutes before to one hour after the start, both ends included, and never once\n"
      "its run has started. Prints \"yes\" (exit 0) or \"no\" (exit 1).");
  addIntegerOption(command, "--now", *now, "The moment to ask about, in Unix milliseconds")->required();
  addIntegerOption(command, "--at", next->at, "The paper's planned start, in Unix milliseconds")->required();
  command->add_flag("--started", next->started, "The paper's run has already started");
  command->callback([next, now] {
    const bool canStart = next->canStart(*now);
    std::cout << (canStart ? "yes" : "no") << '\n';
    exitStatus() = canStart ? 0 : 1;
  });
}

}  // namespace

void addStudyCommands(CLI::App& app) {
  CLI::App* study = app.add_subcommand("study", "Check the study records of focus runs");
  study->require_subcommand(1);
  addCanStartCommand(*study);
}

}  // namespace kovi::tool
