// `kovi errors`: the messages users read for the service's error codes and
// rate limits.
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

#include "KoviKit/native/NativeAccountError.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/ErrorAreas.h"
#include "tools/kovi/NumberOptions.h"

namespace kovi::tool {
namespace {

void addMessageCommand(CLI::App& errors) {
  struct Options {
    std::string code;
    std::string area = "account";
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = errors.add_subcommand(
      "message",
      "Print the Turkish message users read when a service area answers with CODE.\n"
      "A code the area's table does not know gets the generic message, as in the apps;\n"
      "the exit status is then 1, so scripts can tell a known code (0) from an unknown one.");
  command->add_option("CODE", options->code, "The service's snake_case error code, such as accounts_at_capacity")
      ->required();
  command->add_option("--area", options->area, "The service area whose code table to use")
      ->check(CLI::IsMember(errorAreaNames()))
      ->capture_default_str();
  command->callback([options] {
    const NativeErrorTable& table = *findErrorArea(options->area);
    std::cout << table.messageFor(options->code) << '\n';
    exitStatus() = table.knows(options->code) ? 0 : 1;
  });
}

void addWaitCommand(CLI::App& errors) {
  auto seconds = std::make_shared<std::int64_t>(0);
  CLI::App* command = errors.add_subcommand(
      "wait",
      "Print the sentence users read when the service asks them to wait SECONDS before\n"
      "trying again: whole minutes rounded up above 59 seconds, otherwise seconds, and\n"
      "never less than 1 second (0 and negative waits read as 1 second).");
  addIntegerOption(command, "SECONDS", *seconds, "The wait in seconds, as a 429 response gives it")->required();
  command->callback([seconds] { std::cout << nativeRateLimitMessage(*seconds) << '\n'; });
}

}  // namespace

void addErrorsCommands(CLI::App& app) {
  CLI::App* errors = app.add_subcommand("errors", "Show the messages for the service's error codes and rate limits");
  errors->require_subcommand(1);
  addMessageCommand(*errors);
  addWaitCommand(*errors);
}

}  // namespace kovi::tool
