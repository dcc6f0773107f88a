// `kovi`: the command-line tool over KoviKit for the people who run and test
// the Kovi service.
#include <CLI/CLI.hpp>

#include "tools/kovi/Commands.h"

namespace kovi::tool {

CLI::App& commandGroup(CLI::App& app, const std::string& name, const std::string& description) {
  const auto existing = app.get_subcommands([&name](CLI::App* group) { return group->get_name() == name; });
  if (!existing.empty()) return *existing.front();
  CLI::App* group = app.add_subcommand(name, description);
  group->require_subcommand(1);
  return *group;
}

int& exitStatus() {
  static int status = 0;
  return status;
}

}  // namespace kovi::tool

int main(int argc, char** argv) {
  CLI::App app{"kovi — inspect and exercise the Kovi framework: rules, errors, walking evidence, invites, the cat"};
  app.require_subcommand(1);
  app.set_help_all_flag("--help-all", "Print help for every command");

  kovi::tool::addErrorsCommands(app);
  kovi::tool::addCallCommand(app);
  kovi::tool::addCatCommands(app);
  kovi::tool::addStudyCommands(app);
  kovi::tool::addWalkingCommands(app);
  kovi::tool::addInviteCommands(app);
  kovi::tool::addRulesCommands(app);
  kovi::tool::addWalletCommands(app);
  kovi::tool::addWalletOperationCommands(app);
  kovi::tool::addWalletPasskeyCommands(app);
  kovi::tool::addEvidenceReadCommands(app);
  kovi::tool::addWorkingRecordCommands(app);
  kovi::tool::addWorkingFenceCommands(app);
  kovi::tool::addWorkingSessionCommands(app);
  kovi::tool::addEvidenceSubmissionCommands(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // --help is reported as a parse "error" that exits 0; every real usage
    // error exits 2, as the commands document.
    return app.exit(error) == 0 ? 0 : 2;
  }
  return kovi::tool::exitStatus();
}
