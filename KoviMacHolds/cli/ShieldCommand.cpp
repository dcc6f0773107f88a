// `kovi-holds shield`: the shield drawn into a PNG file, without a desktop.
#include <iostream>
#include <memory>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"
#include "KoviMacHolds/cli/Commands.h"
#include "KoviMacHolds/platform/MacHoldsDesktop.h"

namespace kovi::holds {
namespace {

struct ShieldOptions {
  std::string due;
  std::string until;
  std::optional<std::string> app;
  std::optional<std::string> stage;
  std::filesystem::path png;
};

// "HH:MM" today in the local calendar, or a full ISO 8601 instant.
std::optional<Date> untilDate(std::string_view text, const Calendar& calendar) {
  if (auto instant = parseInstant(text)) return Date::fromUnixMillis(static_cast<double>(*instant));
  int hour = 0;
  int minute = 0;
  char rest = 0;
  const std::string copy(text);
  if (std::sscanf(copy.c_str(), "%2d:%2d%c", &hour, &minute, &rest) != 2 || hour > 23 || minute > 59 || hour < 0 ||
      minute < 0) {
    return std::nullopt;
  }
  return calendar.dateAt(calendar.dayString(Date::now()), hour * 60 + minute);
}

int runShield(const ShieldOptions& options) {
  const Calendar calendar = Calendar::current();
  const auto until = untilDate(options.until, calendar);
  if (!until) {
    std::cerr << "kovi-holds shield: --until: not a time HH:MM or an ISO 8601 instant: " << options.until << '\n';
    return 2;
  }
  // The validator admits only study, sleep and social.
  const auto kind = enumFromName<MacHoldsDue::Kind>(options.due);
  // The app group's shared preferences carry the font choices and the cat's level.
  const FileKeyValueStore preferences{std::string(PurrlCatIdentity::preferencesDomain)};
  const MacHoldsShieldView view{
      .due = {*kind, *until},
      .appName = options.app,
      .openKovi = {},
      .back = {},
      .catStage = options.stage ? options.stage : purrlCatStage(preferences),
  };
  if (auto written = renderMacHoldsShieldPng(view, PurrlFontStore(preferences), calendar, options.png); !written) {
    std::cerr << "kovi-holds shield: " << written.error() << '\n';
    return 1;
  }
  std::cout << "wrote " << options.png.string() << '\n';
  return 0;
}

}  // namespace

void addShieldCommand(CLI::App& app) {
  auto options = std::make_shared<ShieldOptions>();
  CLI::App* command = app.add_subcommand(
      "shield", "Draw the shield the agent shows over a held application into a PNG file (no desktop needed)");
  command->add_option("--due", options->due, "The hold: study, sleep or social")
      ->required()
      ->check(CLI::IsMember({"study", "sleep", "social"}));
  command->add_option("--until", options->until, "When the hold ends: HH:MM today, or an ISO 8601 instant")
      ->required()
      ->type_name("TIME");
  command->add_option("--app", options->app, "The held application's name (default: \"This app\")")->type_name("NAME");
  command->add_option("--stage", options->stage, "The cat's growth stage (default: from the shared preferences)")
      ->check(CLI::IsMember({"kitten", "young", "grown"}));
  command->add_option("--png", options->png, "Where to write the image")->required()->type_name("FILE");
  command->callback([options] { exitStatus() = runShield(*options); });
}

}  // namespace kovi::holds
