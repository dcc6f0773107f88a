// `kovi evidence read` and `kovi evidence cursor`: steps read from a Health
// export into a kovi's 15-minute buckets, and the read cursors kept on disk.
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "KoviKit/evidence/EvidenceReadCursorFileStorage.h"
#include "KoviKit/evidence/HealthExportStore.h"
#include "KoviKit/evidence/HealthStepStatistics.h"
#include "KoviKit/foundation/Json.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/WalkingInput.h"

namespace kovi::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kGroupDescription = "Walking evidence: reading Health, read cursors, envelopes and submission";
// Exports above this size report their progress on stderr.
constexpr std::uint64_t kProgressThresholdBytes = 4 * 1024 * 1024;

// The reads format `kovi walking evaluate --reads` takes: one object per day,
// instants in Unix milliseconds.
Json readsJson(const std::vector<HealthEvidenceDayRead>& days) {
  Json json = Json::array();
  for (const HealthEvidenceDayRead& read : days) {
    Json buckets = Json::array();
    for (const HealthEvidenceBucket& bucket : read.buckets) {
      buckets.push_back({{"start", bucket.start.unixMillis()},
                         {"end", bucket.end.unixMillis()},
                         {"amount", bucket.amount},
                         {"provisional", bucket.provisional}});
    }
    json.push_back({{"day", read.day}, {"outcome", read.outcome}, {"buckets", std::move(buckets)}});
  }
  return json;
}

// "kovi: reading export.zip: 40% (41.9 of 104.9 MB)" at every tenth of the way.
HealthReadProgress progressLine(const std::string& name) {
  auto lastTenth = std::make_shared<std::uint64_t>(0);
  return [name, lastTenth](std::uint64_t done, std::uint64_t total) {
    if (total < kProgressThresholdBytes || done > total) return;
    const std::uint64_t tenth = done * 10 / total;
    if (tenth == *lastTenth) return;
    *lastTenth = tenth;
    char line[160];
    std::snprintf(line, sizeof line, "kovi: reading %s: %llu%% (%.1f of %.1f MB)", name.c_str(),
                  static_cast<unsigned long long>(tenth * 10), static_cast<double>(done) / 1e6,
                  static_cast<double>(total) / 1e6);
    std::cerr << line << std::endl;
  };
}

void addReadCommand(CLI::App& evidence) {
  struct Options : HealthExportOptions {
    std::string rules;
    std::optional<UnixMillis> start;
    std::optional<UnixMillis> cutoff;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = evidence.add_subcommand(
      "read",
      "Read a kovi's days from a Health export and print them in the reads format that\n"
      "`kovi walking evaluate --reads` and `kovi evidence submit --reads` take:\n"
      "  [{\"day\": 0, \"outcome\": \"measured\", \"buckets\": [{\"start\": T, \"end\": T, \"amount\": 812.5,\n"
      "    \"provisional\": false}]}]\n"
      "with T in Unix milliseconds. Steps are summed into each day's 15-minute buckets: a sample\n"
      "straddling a bucket edge is split in proportion to its time on either side, and where\n"
      "several sources overlap the time counts once, from the source first in --source-priority.\n"
      "A day without samples is noReadableData (never zero steps); a bucket ending after --cutoff\n"
      "is provisional. An export that cannot be read prints every day as readFailed, the reason\n"
      "on stderr, and exits 1.\n"
      "--export is the phone's export.zip, its export.xml, or a JSON sample file\n"
      "  [{\"start\": MS, \"end\": MS, \"value\": 412, \"source\": \"Apple Watch\"}].");
  addHealthExportOptions(command, *options);
  command->add_option("--rules", options->rules, "The rules JSON file, or - for standard input")->required();
  addInstantOption(command, "--start", options->start, "When the kovi started")->required();
  addInstantOption(command, "--cutoff", options->cutoff, "When the reading is taken (default: now)");
  command->callback([options] {
    const auto rules = decodeFile<WalkingKoviRules>(options->rules);
    if (!rules) return;
    const auto windows = windowsOf(*rules, *options->start);
    if (!windows) return;
    const HealthEvidenceReadRequest request{*windows, options->cutoff.value_or(Date::now().unixMillis()),
                                            std::nullopt};
    HealthExportStore store(options->exportPath,
                            progressLine(std::filesystem::path(options->exportPath).filename().string()));
    const auto reading = readHealthEvidence(store, request, HealthSourcePriority::fromList(options->sourcePriority));
    std::cout << readsJson(reading.result.days).dump(2) << '\n';
    if (reading.failure) {
      std::cerr << "kovi: " << *reading.failure << '\n';
      exitStatus() = 1;
    }
  });
}

struct CursorOptions {
  std::string scope;
  std::string dataDirectory = applicationSupportDirectory().string();
};

CLI::App* addCursorCommand(CLI::App& cursor, const std::string& name, const std::string& description,
                           const std::shared_ptr<CursorOptions>& options) {
  CLI::App* command = cursor.add_subcommand(name, description);
  command
      ->add_option("--scope", options->scope,
                   "The scope JSON file ({\"kind\", \"ownerID\", \"subjectID\", \"bindingID\", \"writerEpoch\",\n"
                   "\"writerDeviceID\"}), or - for standard input")
      ->required();
  command->add_option("--data-dir", options->dataDirectory,
                      "Where the Kovi/ folders are (default: $XDG_DATA_HOME or ~/.local/share)");
  return command;
}

// The scope of --scope; nullopt after reporting why not (status 2). Its
// fields name the cursor's file, so a key given twice is refused.
std::optional<EvidenceReadScope> scopeFile(const std::string& path) {
  const auto text = readInput(path);
  if (!text) {
    refuseInput(text.error());
    return std::nullopt;
  }
  auto scope = decodeJsonText<EvidenceReadScope>(*text);
  if (!scope) {
    refuseInput(path + ": " + scope.error().message());
    return std::nullopt;
  }
  if (auto reason = scope->invalidReason()) {
    refuseInput(path + ": " + *reason);
    return std::nullopt;
  }
  return std::move(*scope);
}

void reportFailure(const EvidenceReadFailure& failure) {
  std::cerr << "kovi: " << enumName(failure.error) << ": " << failure.detail << '\n';
  exitStatus() = 1;
}

void addCursorCommands(CLI::App& evidence) {
  CLI::App* cursor = evidence.add_subcommand("cursor", "Inspect and clear the read cursor of one scope");
  cursor->require_subcommand(1);

  auto showOptions = std::make_shared<CursorOptions>();
  addCursorCommand(*cursor, "show",
                   "Print the scope's cursor as JSON: its digest, its files, the last item handed out\n"
                   "(record, null before the first read) and the days the service accepted (accepted).\n"
                   "A stored file that cannot be used exits 1 with the reason (invalidStoredCursor,\n"
                   "unsupportedStoredVersion, storageTooLarge, storageUnavailable).",
                   showOptions)
      ->callback([showOptions] {
        const auto scope = scopeFile(showOptions->scope);
        if (!scope) return;
        EvidenceReadCursorFileStorage storage(showOptions->dataDirectory);
        const auto record = storage.loadRecord(*scope);
        if (!record) return reportFailure(record.error());
        const auto accepted = storage.loadAccepted(*scope);
        if (!accepted) return reportFailure(accepted.error());
        const Json json{{"digest", scope->digest()},
                        {"recordFile", storage.recordFile(*scope).string()},
                        {"acceptedFile", storage.acceptedFile(*scope).string()},
                        {"record", encodeValue(*record)},
                        {"accepted", encodeValue(*accepted)}};
        std::cout << json.dump(2) << '\n';
      });

  auto resetOptions = std::make_shared<CursorOptions>();
  addCursorCommand(*cursor, "reset",
                   "Remove the scope's cursor files, so its next read starts at the first day. Prints\n"
                   "{\"digest\", \"removed\"} with removed true when there was something to remove.",
                   resetOptions)
      ->callback([resetOptions] {
        const auto scope = scopeFile(resetOptions->scope);
        if (!scope) return;
        EvidenceReadCursorFileStorage storage(resetOptions->dataDirectory);
        const bool existed =
            std::filesystem::exists(storage.recordFile(*scope)) || std::filesystem::exists(storage.acceptedFile(*scope));
        if (auto removed = storage.remove(*scope); !removed) return reportFailure(removed.error());
        std::cout << Json{{"digest", scope->digest()}, {"removed", existed}}.dump() << '\n';
      });
}

}  // namespace

void addEvidenceReadCommands(CLI::App& app) {
  CLI::App& evidence = commandGroup(app, "evidence", kGroupDescription);
  addReadCommand(evidence);
  addCursorCommands(evidence);
}

}  // namespace kovi::tool
