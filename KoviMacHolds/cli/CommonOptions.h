#pragma once

#include <CLI/CLI.hpp>

#include <filesystem>
#include <optional>
#include <string>

#include "KoviKit/foundation/Calendar.h"
#include "KoviMacHolds/MacHoldsSnapshot.h"

namespace kovi::holds {

// Options every inspection command takes: where the snapshot comes from and
// whether to print JSON.
struct SnapshotOptions {
  std::optional<std::filesystem::path> file;
  bool demo = false;
  bool json = false;
};

// Adds --file PATH, --demo and --json to `command`.
void addSnapshotOptions(CLI::App& command, SnapshotOptions& options);

// Checks an ISO 8601 instant with an offset or Z ("2026-11-22T23:30:00+03:00").
CLI::Validator instantValidator();
// Checks a day written YYYY-MM-DD that exists in the current calendar.
CLI::Validator dayValidator();

// The snapshot the options select, and where it came from for messages. The
// demo snapshot is laid out around `day`.
struct SelectedSnapshot {
  MacHoldsSnapshotLoad load;
  std::string source;  // the file's path, or "the demo schedule"
};
SelectedSnapshot selectSnapshot(const SnapshotOptions& options, std::string_view day, const Calendar& calendar);

}  // namespace kovi::holds
