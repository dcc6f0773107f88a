// `kovi walking`: a walking kovi's day windows, rules hash, canonical text,
// Turkish description and the evaluation of a member's reads.
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/evidence/WalkingDayWindowVerifier.h"
#include "KoviKit/evidence/WalkingEvidenceEvaluation.h"
#include "KoviKit/evidence/WalkingRuleDescription.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/WalkingInput.h"

namespace kovi::tool {
namespace {

using Json = nlohmann::ordered_json;

Json windowJson(const HealthEvidenceDayWindow& window) {
  return {{"day", window.day}, {"start", window.start}, {"end", window.end}};
}

struct RulesOptions {
  std::string rules;
  std::optional<UnixMillis> start;
};

CLI::App* addRulesCommand(CLI::App& walking, const std::string& name, const std::string& description,
                          const std::shared_ptr<RulesOptions>& options) {
  CLI::App* command = walking.add_subcommand(name, description);
  command->add_option("RULES", options->rules, "The rules JSON file, or - for standard input")->required();
  return command;
}

void addWindowsCommand(CLI::App& walking) {
  auto options = std::make_shared<RulesOptions>();
  CLI::App* command = addRulesCommand(
      walking, "windows",
      "Print the kovi's day windows as [{\"day\", \"start\", \"end\"}] in Unix milliseconds.\n"
      "Windows fixed in the rules are checked against the rules first; rules that yield none,\n"
      "or whose fixed windows disagree, are reported with the reasons and exit 1.",
      options);
  addInstantOption(command, "--start", options->start, "When the kovi started")->required();
  command->callback([options] {
    const auto rules = decodeFile<WalkingKoviRules>(options->rules);
    if (!rules) return;
    const auto windows = windowsOf(*rules, *options->start);
    if (!windows) return;
    Json json = Json::array();
    for (const auto& window : *windows) json.push_back(windowJson(window));
    std::cout << json.dump() << '\n';
  });
}

void addTextCommands(CLI::App& walking) {
  auto options = std::make_shared<RulesOptions>();
  addRulesCommand(walking, "hash", "Print the rules hash: lowercase hex SHA-256 of the canonical rules.", options)
      ->callback([options] {
        if (const auto rules = decodeFile<WalkingKoviRules>(options->rules)) std::cout << rules->rulesHash() << '\n';
      });
  addRulesCommand(walking, "canonical",
                  "Print the canonical rules JSON that the hash is taken of: declared key order, no\n"
                  "whitespace, absent optional fields left out.",
                  options)
      ->callback([options] {
        if (const auto rules = decodeFile<WalkingKoviRules>(options->rules)) {
          std::cout << rules->canonicalJson() << '\n';
        }
      });
  addRulesCommand(walking, "describe",
                  "Print the Turkish description shown before joining: the title, then one rule a line.",
                  options)
      ->callback([options] {
        const auto rules = decodeFile<WalkingKoviRules>(options->rules);
        if (!rules) return;
        const auto description = WalkingRuleDescription::describe(*rules);
        if (!description.title.empty()) std::cout << description.title << '\n';
        for (const std::string& line : description.lines) std::cout << line << '\n';
      });
}

Json dayJson(const WalkingEvidenceDayValue& value) {
  Json json = windowJson(value.window);
  json["outcome"] = value.outcome;
  json["total"] = value.total;
  json["closedTotal"] = value.closedTotal;
  json["lastClosedBucketEnd"] = value.lastClosedBucketEnd ? Json(*value.lastClosedBucketEnd) : Json();
  json["provisional"] = value.provisional;
  return json;
}

template <class T>
Json optionalJson(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

Json evaluationJson(const WalkingEvidenceEvaluation& evaluation, const Json& refused) {
  Json days = Json::array();
  for (const auto& [day, value] : evaluation.days) days.push_back(dayJson(value));
  return {{"verdict", evaluation.verdict},
          {"closedTotal", evaluation.closedTotal},
          {"successfulDays", evaluation.successfulDays},
          {"reachedAt", optionalJson(evaluation.reachedAt)},
          {"reachedDay", optionalJson(evaluation.reachedDay)},
          {"missingDays", evaluation.missingDays},
          {"provisionalDays", evaluation.provisionalDays},
          {"upcomingDays", evaluation.upcomingDays},
          {"evidenceClosesAt", evaluation.evidenceClosesAt},
          {"days", std::move(days)},
          {"refusedDays", refused}};
}

void addEvaluateCommand(CLI::App& walking) {
  struct Options : RulesOptions {
    std::string reads;
    std::optional<UnixMillis> cutoff;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = walking.add_subcommand(
      "evaluate",
      "Evaluate one member's reads against the rules at --cutoff (default: now) and print the\n"
      "evaluation as JSON: the verdict (open, met, failed), the closed total, met days, the\n"
      "first-to-target reach, missing, provisional and upcoming days, every read day's value,\n"
      "and the days refused for buckets off the 15-minute grid (those count as missing).\n"
      "FILE is a JSON array with one object per read day:\n"
      "  {\"day\": 0, \"outcome\": \"measured\", \"buckets\": [{\"start\": T, \"end\": T, \"amount\": 812}]}\n"
      "outcome is measured, noReadableData, temporarilyUnavailable, readFailed,\n"
      "healthKitUnavailable or authorizationRequestNotCompleted; T is Unix milliseconds or an\n"
      "ISO 8601 instant; a bucket may say \"provisional\": true. Days not in FILE are unread.");
  command->add_option("RULES", options->rules, "The rules JSON file, or - for standard input")->required();
  addInstantOption(command, "--start", options->start, "When the kovi started")->required();
  command->add_option("--reads", options->reads, "The reads JSON file, or - for standard input")->required();
  addInstantOption(command, "--cutoff", options->cutoff, "When the reads were taken");
  command->callback([options] {
    const auto rules = decodeFile<WalkingKoviRules>(options->rules);
    if (!rules) return;
    const auto reads = decodeFile<std::vector<HealthEvidenceDayRead>>(options->reads);
    if (!reads) return;
    const auto windows = windowsOf(*rules, *options->start);
    if (!windows) return;
    const UnixMillis cutoff = options->cutoff.value_or(Date::now().unixMillis());

    std::map<int, const HealthEvidenceDayRead*> byDay;
    for (const HealthEvidenceDayRead& read : *reads) {
      if (read.day < 0 || read.day >= static_cast<int>(windows->size())) {
        return refuseInput(options->reads + ": day " + std::to_string(read.day) + " is not a day of this kovi");
      }
      if (!byDay.emplace(read.day, &read).second) {
        return refuseInput(options->reads + ": day " + std::to_string(read.day) + " is read twice");
      }
    }
    std::vector<WalkingEvidenceBuckets::SanitizedDay> days;
    Json refused = Json::array();
    for (const auto& [day, read] : byDay) {
      const auto& window = (*windows)[static_cast<std::size_t>(day)];
      auto sanitized = WalkingEvidenceBuckets::sanitize(window, read->outcome, read->buckets, cutoff);
      if (sanitized) {
        days.push_back(std::move(*sanitized));
      } else {
        refused.push_back({{"day", day},
                           {"code", sanitized.error().code},
                           {"message", sanitized.error().message()},
                           {"detail", sanitized.error().detail}});
      }
    }
    const auto evaluation = WalkingEvidenceEvaluation::evaluate(*rules, *windows, days, cutoff);
    std::cout << evaluationJson(evaluation, refused).dump(2) << '\n';
  });
}

}  // namespace

void addWalkingCommands(CLI::App& app) {
  CLI::App* walking = app.add_subcommand("walking", "Walking kovis: day windows, rules hash, description, evaluation");
  walking->require_subcommand(1);
  addWindowsCommand(*walking);
  addTextCommands(*walking);
  addEvaluateCommand(*walking);
}

}  // namespace kovi::tool
