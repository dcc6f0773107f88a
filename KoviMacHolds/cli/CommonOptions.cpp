#include "KoviMacHolds/cli/CommonOptions.h"

#include "KoviKit/foundation/Time.h"
#include "KoviMacHolds/cli/DemoSnapshot.h"

namespace kovi::holds {

void addSnapshotOptions(CLI::App& command, SnapshotOptions& options) {
  auto* file = command.add_option("--file", options.file,
                                  "Snapshot to read (default: " + defaultMacHoldsSnapshotPath().string() + ")");
  file->type_name("PATH");
  command.add_flag("--demo", options.demo, "Use the embedded demo schedule (an exam week around today) instead of a file")
      ->excludes(file);
  command.add_flag("--json", options.json, "Print one JSON object instead of sentences");
}

CLI::Validator instantValidator() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (parseInstant(text)) return {};
        return "not an ISO 8601 time with an offset or Z (e.g. 2026-11-22T23:30:00+03:00): " + text;
      },
      "");
}

CLI::Validator dayValidator() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (Calendar::current().parseDay(text)) return {};
        return "not a day written YYYY-MM-DD: " + text;
      },
      "");
}

SelectedSnapshot selectSnapshot(const SnapshotOptions& options, std::string_view day, const Calendar& calendar) {
  if (options.demo) return {demoSnapshot(day, calendar), "the demo schedule"};
  const std::filesystem::path path = options.file.value_or(defaultMacHoldsSnapshotPath());
  return {loadMacHoldsSnapshot(path), path.string()};
}

}  // namespace kovi::holds
