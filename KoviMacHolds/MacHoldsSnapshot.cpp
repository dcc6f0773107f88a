#include "KoviMacHolds/MacHoldsSnapshot.h"

#include "KoviKit/foundation/ApplicationSupport.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"

namespace kovi {

// The snapshot decodes as the main app encodes it: keys are the field names,
// optional fields may be absent or null, and keys the agent does not know are
// ignored so a newer main app can add fields without silencing the agent.

Decoded<holds::MacFocus4Allowance> JsonDecoder<holds::MacFocus4Allowance>::decode(const JsonView& json) {
  auto day = json.get<std::string>("day");
  if (!day) return std::unexpected(day.error());
  auto usedMS = json.get<std::int64_t>("usedMS");
  if (!usedMS) return std::unexpected(usedMS.error());
  auto since = json.getOptional<std::int64_t>("since");
  if (!since) return std::unexpected(since.error());
  return holds::MacFocus4Allowance{std::move(*day), *usedMS, *since};
}

Decoded<holds::MacHoldsSnapshot::ExamWeek> JsonDecoder<holds::MacHoldsSnapshot::ExamWeek>::decode(
    const JsonView& json) {
  holds::MacHoldsSnapshot::ExamWeek week;
  auto startDay = json.get<std::string>("startDay");
  if (!startDay) return std::unexpected(startDay.error());
  auto endDay = json.get<std::string>("endDay");
  if (!endDay) return std::unexpected(endDay.error());
  week.startDay = std::move(*startDay);
  week.endDay = std::move(*endDay);
  for (auto [key, field] : {std::pair{"days", &week.days}, std::pair{"firstMinute", &week.firstMinute},
                            std::pair{"secondMinute", &week.secondMinute},
                            std::pair{"blockMinutes", &week.blockMinutes}}) {
    auto value = json.get<int>(key);
    if (!value) return std::unexpected(value.error());
    *field = *value;
  }
  auto sleepStart = json.getOptional<int>("sleepStart");
  if (!sleepStart) return std::unexpected(sleepStart.error());
  auto sleepEnd = json.getOptional<int>("sleepEnd");
  if (!sleepEnd) return std::unexpected(sleepEnd.error());
  auto socialMinutes = json.get<int>("socialMinutes");
  if (!socialMinutes) return std::unexpected(socialMinutes.error());
  auto strictness = json.get<std::string>("strictness");
  if (!strictness) return std::unexpected(strictness.error());
  week.sleepStart = *sleepStart;
  week.sleepEnd = *sleepEnd;
  week.socialMinutes = *socialMinutes;
  week.strictness = std::move(*strictness);
  return week;
}

Decoded<holds::MacHoldsSnapshot::Sleep> JsonDecoder<holds::MacHoldsSnapshot::Sleep>::decode(const JsonView& json) {
  auto startMinute = json.get<int>("startMinute");
  if (!startMinute) return std::unexpected(startMinute.error());
  auto endMinute = json.get<int>("endMinute");
  if (!endMinute) return std::unexpected(endMinute.error());
  auto strictness = json.get<std::string>("strictness");
  if (!strictness) return std::unexpected(strictness.error());
  return holds::MacHoldsSnapshot::Sleep{*startMinute, *endMinute, std::move(*strictness)};
}

Decoded<holds::MacHoldsSnapshot> JsonDecoder<holds::MacHoldsSnapshot>::decode(const JsonView& json) {
  holds::MacHoldsSnapshot snapshot;
  auto version = json.get<int>("version");
  if (!version) return std::unexpected(version.error());
  auto stopped = json.get<bool>("stopped");
  if (!stopped) return std::unexpected(stopped.error());
  auto accountScope = json.getOptional<std::string>("accountScope");
  if (!accountScope) return std::unexpected(accountScope.error());
  auto syncedAt = json.get<double>("syncedAt");
  if (!syncedAt) return std::unexpected(syncedAt.error());
  auto examWeek = json.getOptional<holds::MacHoldsSnapshot::ExamWeek>("examWeek");
  if (!examWeek) return std::unexpected(examWeek.error());
  auto sleep = json.getOptional<holds::MacHoldsSnapshot::Sleep>("sleep");
  if (!sleep) return std::unexpected(sleep.error());
  auto keepCommunication = json.get<bool>("keepCommunication");
  if (!keepCommunication) return std::unexpected(keepCommunication.error());
  auto allowance = json.getOptional<holds::MacFocus4Allowance>("allowance");
  if (!allowance) return std::unexpected(allowance.error());
  snapshot.version = *version;
  snapshot.stopped = *stopped;
  snapshot.accountScope = std::move(*accountScope);
  snapshot.syncedAt = Date::fromSecondsSince2001(*syncedAt);
  snapshot.examWeek = std::move(*examWeek);
  snapshot.sleep = std::move(*sleep);
  snapshot.keepCommunication = *keepCommunication;
  snapshot.allowance = std::move(*allowance);
  return snapshot;
}

}  // namespace kovi

namespace kovi::holds {
namespace {

using Kind = MacHoldsSnapshotFailure::Kind;

std::unexpected<MacHoldsSnapshotFailure> failure(Kind kind, std::string reason) {
  return std::unexpected(MacHoldsSnapshotFailure{kind, std::move(reason)});
}

std::string versionText(int version) {
  return "version " + std::to_string(version) + " is not supported (only " +
         std::to_string(kMacHoldsSnapshotVersion) + " is)";
}

}  // namespace

MacHoldsSnapshotLoad decodeMacHoldsSnapshot(std::string_view bytes) {
  if (auto snapshot = decodeMacHoldsSnapshotFast(bytes)) return std::move(*snapshot);
  // Anything the fast path does not take is read strictly, which says why it fails.
  auto document = parseJson(bytes);
  if (!document) return failure(Kind::undecodable, document.error().message());
  const JsonView root(*document);
  // The version decides how the rest is read, so it is looked at first.
  if (root.contains("version")) {
    if (auto version = root.get<int>("version"); version && *version != kMacHoldsSnapshotVersion) {
      return failure(Kind::unsupportedVersion, versionText(*version));
    }
  }
  auto snapshot = root.as<MacHoldsSnapshot>();
  if (!snapshot) return failure(Kind::undecodable, snapshot.error().message());
  return std::move(*snapshot);
}

MacHoldsSnapshotLoad loadMacHoldsSnapshot(const std::filesystem::path& path) {
  auto bytes = readFileLimited(path, kMacHoldsSnapshotByteLimit);
  if (!bytes) {
    const FileReadError& error = bytes.error();
    switch (error.failure) {
      case FileReadFailure::missing: return failure(Kind::missing, "the snapshot is missing at " + path.string());
      case FileReadFailure::tooLarge:
        return failure(Kind::tooLarge, "the snapshot at " + path.string() + " is larger than " +
                                           std::to_string(kMacHoldsSnapshotByteLimit) + " bytes");
      case FileReadFailure::unreadable: break;
    }
    return failure(Kind::unreadable, "the snapshot at " + path.string() + " cannot be read: " + error.detail);
  }
  return decodeMacHoldsSnapshot(*bytes);
}

std::filesystem::path defaultMacHoldsSnapshotPath() {
  return applicationSupportDirectory() / "Kovi" / "Holds" / "holds.json";
}

}  // namespace kovi::holds
