// `kovi-holds schedule`: the day's timeline of due holds.
#include <iostream>
#include <memory>

#include "KoviMacHolds/MacHoldsTimeline.h"
#include "KoviMacHolds/cli/Commands.h"
#include "KoviMacHolds/cli/CommonOptions.h"
#include "KoviMacHolds/cli/HoldsJson.h"
#include "KoviMacHolds/cli/HoldsText.h"

namespace kovi::holds {
namespace {

struct ScheduleOptions {
  SnapshotOptions snapshot;
  std::optional<std::string> day;
};

std::string scheduleText(const std::string& day, const SelectedSnapshot& selected,
                         const std::vector<MacHoldsSegment>& segments, const Calendar& calendar) {
  if (!selected.load) {
    return "Nothing is held on " + day + ": " + snapshotProblemText(selected.load.error(), selected.source) + ".";
  }
  std::string text = "Holds on " + day + " (local time, " + calendar.zoneID() + "):\n";
  for (std::size_t index = 0; index < segments.size(); ++index) {
    const MacHoldsSegment& segment = segments[index];
    // The day's last segment ends at the next midnight.
    const std::string to = index + 1 == segments.size() ? "24:00" : clockText(segment.to, calendar);
    text += "  " + clockText(segment.from, calendar) + "–" + to + "  " + std::string(holdNameText(segment.kind)) +
            ": " + std::string(holdEffectText(segment.kind)) + "\n";
  }
  text.pop_back();
  return text;
}

int runSchedule(const ScheduleOptions& options) {
  const Calendar calendar = Calendar::current();
  const std::string day = options.day.value_or(calendar.dayString(Date::now()));
  const SelectedSnapshot selected = selectSnapshot(options.snapshot, day, calendar);
  // Without a snapshot nothing is held: an empty schedule gives one unheld segment.
  const auto segments = macHoldsTimeline(selected.load ? *selected.load : MacHoldsSnapshot{}, day, calendar);
  if (!segments) {
    std::cerr << "kovi-holds: " << day << " names no day of the " << calendar.zoneID() << " calendar\n";
    return 2;
  }
  if (options.snapshot.json) {
    nlohmann::ordered_json json = {{"day", day}, {"segments", segmentsJson(*segments)}};
    std::cout << json.dump(2) << '\n';
  } else {
    std::cout << scheduleText(day, selected, *segments, calendar) << '\n';
  }
  return 0;
}

}  // namespace

void addScheduleCommand(CLI::App& app) {
  auto options = std::make_shared<ScheduleOptions>();
  CLI::App* command = app.add_subcommand(
      "schedule", "Show a day's timeline from local midnight to the next: every instant at which the due hold changes");
  addSnapshotOptions(*command, options->snapshot);
  command->add_option("--day", options->day, "The day to show, YYYY-MM-DD (default: today)")->check(dayValidator())->type_name("YYYY-MM-DD");
  command->callback([options] { exitStatus() = runSchedule(*options); });
}

}  // namespace kovi::holds
