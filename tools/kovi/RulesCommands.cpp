// `kovi rules`: check a working rule set, list what this version cannot
// apply, print its consent summary and judge members' work under it.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "KoviKit/working/WorkingJudgement.h"
#include "KoviKit/working/WorkingJudgementCoding.h"
#include "KoviKit/working/WorkingRuleSummary.h"
#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingUnsupportedRules.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

namespace kovi::tool {
namespace {

constexpr const char* kFileHelp = "The rules object as JSON, or - for standard input";

// The rule set in `path`, or nothing after reporting why: unreadable input
// exits 2, a rule set that fails its checks exits 1 with the reason.
std::optional<WorkingRules> readRules(const std::string& path) {
  const auto text = readInput(path);
  if (!text) {
    refuseInput(text.error());
    return std::nullopt;
  }
  auto rules = decodeWorkingRules(*text);
  if (!rules) {
    std::cerr << "kovi: " << path << ": " << rules.error().reason << '\n';
    exitStatus() = 1;
    return std::nullopt;
  }
  return std::move(*rules);
}

// A subcommand of `rules` that reads the rule set in its FILE argument.
CLI::App* addFileCommand(CLI::App& rules, const char* name, const char* description, std::string& file) {
  CLI::App* command = rules.add_subcommand(name, description);
  command->add_option("FILE", file, kFileHelp)->required();
  return command;
}

void addCheckCommand(CLI::App& rules) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = addFileCommand(
      rules, "check",
      "Decode FILE as a working rule set the way the apps do (strict key shape, then types,\n"
      "then every value check) and print `valid` (exit 0) or the reason it is refused (exit 1),\n"
      "such as \"Unknown or missing policy field at rules.goal\" or \"Invalid Kovi range\".",
      *file);
  command->callback([file] {
    const auto text = readInput(*file);
    if (!text) return refuseInput(text.error());
    const auto decoded = decodeWorkingRules(*text);
    std::cout << (decoded ? std::string("valid") : decoded.error().reason) << '\n';
    exitStatus() = decoded ? 0 : 1;
  });
}

void addUnsupportedCommand(CLI::App& rules) {
  auto file = std::make_shared<std::string>();
  CLI::App* command = addFileCommand(
      rules, "unsupported",
      "Print, as a JSON array of {\"path\", \"label\"}, the rules in FILE that this version\n"
      "cannot apply, with the Turkish label users see. Exit 0 when the array is empty,\n"
      "1 when a kovi with these rules cannot be created (or the rules are invalid).",
      *file);
  command->callback([file] {
    const auto rules = readRules(*file);
    if (!rules) return;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const WorkingUnsupportedRule& rule : unsupportedWorkingRules(*rules)) {
      list.push_back({{"path", rule.path}, {"label", rule.label}});
    }
    std::cout << list.dump(2) << '\n';
    exitStatus() = list.empty() ? 0 : 1;
  });
}

void addSummaryCommand(CLI::App& rules) {
  struct Options {
    std::string file;
    std::string language = "tr";
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = addFileCommand(
      rules, "summary",
      "Print the consent summary of the rule set in FILE, one line per line, in Turkish\n"
      "(as participants consent to it) or in its English or French translation.",
      options->file);
  command->add_option("--lang", options->language, "Language of the lines")
      ->check(CLI::IsMember({"tr", "en", "fr"}))
      ->capture_default_str();
  command->callback([options] {
    const auto rules = readRules(options->file);
    if (!rules) return;
    const WorkingSummaryLanguage language = workingSummaryLanguage(options->language).value();
    for (const std::string& line : renderWorkingSummary(summarizeWorkingRules(*rules), language)) {
      std::cout << line << '\n';
    }
  });
}

void addJudgeCommand(CLI::App& rules) {
  struct Options {
    std::string file;
    std::string work;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = addFileCommand(
      rules, "judge",
      "Judge the members' counted work in the --work file under the rule set in FILE, as the\n"
      "consent summary promises, and print each member's progress, success, rank and payout\n"
      "share (basis points) with the settlement as JSON. The work file is\n"
      "{\"members\": [{\"accountID\", \"address\"?, \"violations\"?, \"sessions\": [{\"id\",\n"
      "\"segments\": [{\"start\", \"end\"}]}]}]} with Unix-millisecond instants.",
      options->file);
  command->add_option("--work", options->work, "The members' counted work as JSON, or - for standard input")
      ->required();
  command->callback([options] {
    if (options->file == "-" && options->work == "-") return refuseInput("only one of FILE and --work can be -");
    const auto rules = readRules(options->file);
    if (!rules) return;
    const auto text = readInput(options->work);
    if (!text) return refuseInput(text.error());
    const auto work = decodeWorkingWork(*text);
    if (!work) return refuseInput(options->work + ": " + work.error().message());
    const auto judgement = judgeWorkingRules(*rules, *work);
    if (!judgement) return refuseInput(options->work + ": " + judgement.error());
    std::cout << encodeWorkingJudgement(*judgement).dump(2) << '\n';
  });
}

}  // namespace

void addRulesCommands(CLI::App& app) {
  CLI::App* rules = app.add_subcommand("rules", "Check, summarise and judge working rule sets");
  rules->require_subcommand(1);
  addCheckCommand(*rules);
  addUnsupportedCommand(*rules);
  addSummaryCommand(*rules);
  addJudgeCommand(*rules);
}

}  // namespace kovi::tool
