// `kovi-holds run` (and `kovi-holds` alone): the agent itself.
#include <iostream>
#include <memory>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/cli/Commands.h"
#include "KoviMacHolds/cli/DemoSnapshot.h"
#include "KoviMacHolds/cli/SnapshotWriter.h"
#include "KoviMacHolds/platform/MacHoldsDesktop.h"

namespace kovi::holds {
namespace {

struct RunOptions {
  std::optional<std::filesystem::path> file;
  bool demo = false;
};

int runAgent(const RunOptions& options) {
  MacHoldsAgentOptions agent;
  agent.file = options.file.value_or(defaultMacHoldsSnapshotPath());
  if (options.demo) {
    const Calendar calendar = Calendar::current();
    if (auto written = writeNewMacHoldsSnapshot(demoSnapshot(calendar.dayString(Date::now()), calendar), agent.file);
        !written) {
      std::cerr << "kovi-holds run: " << written.error() << '\n';
      return 1;
    }
  }
  const auto status = runMacHoldsAgent(std::move(agent));
  if (!status) {
    std::cerr << "kovi-holds run: " << status.error() << '\n';
    return 1;
  }
  return *status;
}

}  // namespace

void addRunCommand(CLI::App& app) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* command = app.add_subcommand(
      "run",
      "Run the agent on this desktop: re-read the snapshot every 5 seconds and on every launch, quit and wake-up, "
      "hide held applications when they come to the front and show the shield. Logs one line per decision on "
      "stderr. Exits 0 when nothing is left to hold or another copy runs, 75 when its executable was replaced (a "
      "service manager should then start the new one), 1 when there is no desktop to run on.");
  command->add_option("--file", options->file, "Snapshot to read (default: " + defaultMacHoldsSnapshotPath().string() + ")")
      ->type_name("PATH");
  command->add_flag("--demo", options->demo,
                    "First write the embedded demo schedule (an exam week around today) to the snapshot file, "
                    "which must not exist yet; for trying the agent out in a scratch data directory");
  command->callback([options] { exitStatus() = runAgent(*options); });
}

int runAgentWithDefaults() { return runAgent({}); }

}  // namespace kovi::holds
