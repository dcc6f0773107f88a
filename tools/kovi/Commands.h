#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace kovi::tool {

// Each command group of `kovi` lives in its own file and adds its subcommands
// here. A command's callback sets the process exit status through
// `exitStatus()`; usage errors are CLI11's (exit 2).
void addErrorsCommands(CLI::App& app);
void addCallCommand(CLI::App& app);
void addCatCommands(CLI::App& app);
void addStudyCommands(CLI::App& app);
void addWalkingCommands(CLI::App& app);
void addInviteCommands(CLI::App& app);
void addRulesCommands(CLI::App& app);
void addWalletCommands(CLI::App& app);
void addWalletOperationCommands(CLI::App& app);
void addWalletPasskeyCommands(CLI::App& app);
void addEvidenceReadCommands(CLI::App& app);
void addWorkingRecordCommands(CLI::App& app);
void addWorkingFenceCommands(CLI::App& app);
void addWorkingSessionCommands(CLI::App& app);
void addEvidenceSubmissionCommands(CLI::App& app);

// The command group `name` (`evidence`, `working`, `wallet`, …), added on
// first use, so that several files can each add their commands to one group.
CLI::App& commandGroup(CLI::App& app, const std::string& name, const std::string& description);

// The status `kovi` exits with once the chosen command has run: 0 when the
// command ran and found what was asked, 1 when it ran and found a negative
// answer (an invalid rule set, an error response, no invite code).
int& exitStatus();

}  // namespace kovi::tool
