// `kovi cat`: the cat's mood rule and growth moments, as the apps compute them.
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "KoviKit/purrl/PurrlCatGrowthMoment.h"
#include "KoviKit/purrl/PurrlCatGrowthRules.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"
#include "tools/kovi/NumberOptions.h"

namespace kovi::tool {
namespace {

void addMoodCommand(CLI::App& cat) {
  auto inputs = std::make_shared<PurrlCatMoodInputs>();
  CLI::App* command = cat.add_subcommand(
      "mood",
      "Print the cat's mood and its reason for the facts of the moment, as MOOD REASON in\n"
      "their raw values (\"happy busy_day\"). Hours outside 6 to 22 are night; petting moves\n"
      "a waking mood one step towards glowing.");
  addIntegerOption(command, "--hour", inputs->hour, "The local hour of day", 0, 23)->required();
  addIntegerOption(command, "--things", inputs->things, "How many things the person has done today", 0)->required();
  command->add_flag("--petted", inputs->petted, "The person has petted the cat today");
  command->add_flag("--kept", inputs->keptRecently, "A kovi was kept recently");
  command->add_flag("--missed", inputs->missedRecently, "A kovi was missed recently");
  addIntegerOption(command, "--away-days", inputs->awayDays, "Whole days since the person last came to the cat", 0)
      ->default_str("0");
  command->callback([inputs] {
    const PurrlCatMoodResult result = PurrlCatGrowthRules::mood(*inputs);
    std::cout << enumName(result.mood) << ' ' << enumName(result.reason) << '\n';
  });
}

nlohmann::ordered_json leadJson(const PurrlCatGrowthMoment::Lead& lead) {
  using Moment = PurrlCatGrowthMoment;
  if (const auto* growUp = std::get_if<Moment::GrowUp>(&lead)) {
    return {{"kind", "growUp"}, {"from", growUp->from}, {"to", growUp->to}};
  }
  if (const auto* trick = std::get_if<Moment::Trick>(&lead)) return {{"kind", "trick"}, {"trick", trick->id}};
  return {{"kind", "item"}, {"item", std::get<Moment::Item>(lead).id}};
}

void addMomentCommand(CLI::App& cat) {
  struct Options {
    std::string growth;
    std::vector<std::string> seen;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = cat.add_subcommand(
      "moment",
      "Print the growth moment the app would celebrate: the showable rewards of the growth\n"
      "in FILE (the service's growth JSON) whose ids are not in --seen, as JSON with its lead\n"
      "and the tricks shown under it. Prints \"none\" and exits 1 when there is nothing new to\n"
      "show; a FILE that does not decode is reported with the failing key and exits 2.");
  command->add_option("--growth", options->growth, "The growth JSON file, or - for standard input")->required();
  command->add_option("--seen", options->seen, "Reward ids already celebrated, separated by commas")->delimiter(',');
  command->callback([options] {
    const auto text = readInput(options->growth);
    if (!text) {
      std::cerr << "kovi: " << text.error() << '\n';
      exitStatus() = 2;
      return;
    }
    const auto growth = decodeJsonText<PurrlCatGrowth>(*text);
    if (!growth) {
      std::cerr << "kovi: " << options->growth << ": " << growth.error().message() << '\n';
      exitStatus() = 2;
      return;
    }
    const std::set<std::string, std::less<>> seen(options->seen.begin(), options->seen.end());
    const auto moment = PurrlCatGrowthMoment::seenAfter(seen, *growth);
    if (!moment) {
      std::cout << "none\n";
      exitStatus() = 1;
      return;
    }
    nlohmann::ordered_json json = encodeRecord(*moment);
    json["lead"] = leadJson(moment->lead());
    json["furtherTricks"] = moment->furtherTricks();
    std::cout << json.dump(2) << '\n';
  });
}

}  // namespace

void addCatCommands(CLI::App& app) {
  CLI::App* cat = app.add_subcommand("cat", "Compute the cat's mood and growth moments");
  cat->require_subcommand(1);
  addMoodCommand(*cat);
  addMomentCommand(*cat);
}

}  // namespace kovi::tool
