#pragma once

#include <CLI/CLI.hpp>

namespace kovi::holds {

// Each `kovi-holds` command lives in its own file and adds its subcommand
// here. A command's callback sets the exit status through `exitStatus()`.
void addStatusCommand(CLI::App& app);
void addScheduleCommand(CLI::App& app);
void addRunCommand(CLI::App& app);
void addShieldCommand(CLI::App& app);

// `kovi-holds` without a command runs the agent on the default snapshot.
int runAgentWithDefaults();

// The status `kovi-holds` exits with once the chosen command has run (0 unless
// a command sets otherwise). Usage errors exit with 2.
int& exitStatus();

}  // namespace kovi::holds
