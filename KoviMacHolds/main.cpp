// `kovi-holds`: the holds agent and the commands that show what it would do.
#include <CLI/CLI.hpp>

#include "KoviMacHolds/cli/Commands.h"

namespace kovi::holds {

int& exitStatus() {
  static int status = 0;
  return status;
}

}  // namespace kovi::holds

int main(int argc, char** argv) {
  CLI::App app{"kovi-holds — keeps the holds the main Kovi app scheduled (study blocks, nights, the Social "
               "allowance) and shows what is held when"};
  app.require_subcommand(0, 1);
  app.set_help_all_flag("--help-all", "Print help for every command");

  kovi::holds::addStatusCommand(app);
  kovi::holds::addScheduleCommand(app);
  kovi::holds::addRunCommand(app);
  kovi::holds::addShieldCommand(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // --help is a ParseError with status 0; everything else is a usage error.
    return app.exit(error) == 0 ? 0 : 2;
  }
  if (app.get_subcommands().empty()) return kovi::holds::runAgentWithDefaults();
  return kovi::holds::exitStatus();
}
