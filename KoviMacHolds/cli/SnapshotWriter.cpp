#include "KoviMacHolds/cli/SnapshotWriter.h"

#include <nlohmann/json.hpp>

#include "KoviKit/foundation/FileIO.h"

namespace kovi::holds {

std::string encodeMacHoldsSnapshot(const MacHoldsSnapshot& snapshot) {
  using Json = nlohmann::ordered_json;
  Json json = Json::object();
  json["version"] = snapshot.version;
  json["stopped"] = snapshot.stopped;
  if (snapshot.accountScope) json["accountScope"] = *snapshot.accountScope;
  json["syncedAt"] = snapshot.syncedAt.secondsSince2001();
  if (const auto& week = snapshot.examWeek) {
    Json examWeek = {{"startDay", week->startDay},         {"endDay", week->endDay},
                     {"days", week->days},                 {"firstMinute", week->firstMinute},
                     {"secondMinute", week->secondMinute}, {"blockMinutes", week->blockMinutes}};
    if (week->sleepStart) examWeek["sleepStart"] = *week->sleepStart;
    if (week->sleepEnd) examWeek["sleepEnd"] = *week->sleepEnd;
    examWeek["socialMinutes"] = week->socialMinutes;
    examWeek["strictness"] = week->strictness;
    json["examWeek"] = std::move(examWeek);
  }
  if (const auto& sleep = snapshot.sleep) {
    json["sleep"] = {{"startMinute", sleep->startMinute}, {"endMinute", sleep->endMinute},
                     {"strictness", sleep->strictness}};
  }
  json["keepCommunication"] = snapshot.keepCommunication;
  if (const auto& allowance = snapshot.allowance) {
    Json record = {{"day", allowance->day}, {"usedMS", allowance->usedMS}};
    if (allowance->since) record["since"] = *allowance->since;
    json["allowance"] = std::move(record);
  }
  return json.dump(2) + "\n";
}

std::expected<void, std::string> writeNewMacHoldsSnapshot(const MacHoldsSnapshot& snapshot,
                                                         const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::exists(file, error)) {
    return std::unexpected(file.string() + ": a snapshot is already there; the demo does not replace it");
  }
  return writeFileAtomically(file, encodeMacHoldsSnapshot(snapshot));
}

}  // namespace kovi::holds
