#include "KoviKit/working/WorkingJudgementCoding.h"

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

template <>
struct JsonRecordFields<WorkingWorkSegment> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("start", &WorkingWorkSegment::start), field("end", &WorkingWorkSegment::end)};
};

template <>
struct JsonRecordFields<WorkingSessionWork> : StrictJsonRecord {
  static constexpr auto fields =
      std::tuple{field("id", &WorkingSessionWork::id), field("segments", &WorkingSessionWork::segments)};
};

template <>
struct JsonRecordFields<WorkingPeriodProgress> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("id", &WorkingPeriodProgress::id),
                                            field("countedMilliseconds", &WorkingPeriodProgress::countedMilliseconds),
                                            field("met", &WorkingPeriodProgress::met)};
};

template <>
struct JsonRecordFields<WorkingSettlement> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("kind", &WorkingSettlement::kind),
                                            field("fallbackUsed", &WorkingSettlement::fallbackUsed),
                                            field("carriedBps", &WorkingSettlement::carriedBps)};
};


namespace {

// Violations default to none, so the member is written by hand rather than
// from a field list.
Decoded<WorkingMemberWork> decodeMember(const JsonView& json) {
  if (auto keys = json.requireOnlyKeys({"accountID", "address", "violations", "sessions"}); !keys) {
    return std::unexpected(keys.error());
  }
  WorkingMemberWork member;
  auto accountID = json.get<std::string>("accountID");
  if (!accountID) return std::unexpected(accountID.error());
  member.accountID = std::move(*accountID);
  auto address = json.getOptional<std::string>("address");
  if (!address) return std::unexpected(address.error());
  member.address = std::move(*address);
  auto violations = json.getOptional<std::int64_t>("violations");
  if (!violations) return std::unexpected(violations.error());
  member.violations = violations->value_or(0);
  auto sessions = json.get<std::vector<WorkingSessionWork>>("sessions");
  if (!sessions) return std::unexpected(sessions.error());
  member.sessions = std::move(*sessions);
  return member;
}

nlohmann::ordered_json encodeMember(const WorkingMemberJudgement& member) {
  const WorkingMemberProgress& progress = member.progress;
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  object["accountID"] = member.accountID;
  object["progressMilliseconds"] = progress.progressMilliseconds;
  object["targetMilliseconds"] = progress.targetMilliseconds;
  object["successful"] = progress.successful;
  object["countedMilliseconds"] = progress.countedMilliseconds;
  object["successfulDays"] = progress.successfulDays;
  object["bestStreak"] = progress.bestStreak;
  object["reachedAt"] = encodeValue(progress.reachedAt);
  object["eligible"] = member.eligible;
  object["rank"] = encodeValue(member.rank);
  object["payoutBps"] = member.payoutBps;
  object["days"] = encodeValue(progress.days);
  object["windows"] = encodeValue(progress.windows);
  return object;
}

}  // namespace

Decoded<std::vector<WorkingMemberWork>> decodeWorkingWork(std::string_view text) {
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  const JsonView root(*document);
  if (auto keys = root.requireOnlyKeys({"members"}); !keys) return std::unexpected(keys.error());
  auto members = root.member("members");
  if (!members) return std::unexpected(members.error());
  auto items = members->elements();
  if (!items) return std::unexpected(items.error());
  std::vector<WorkingMemberWork> work;
  work.reserve(items->size());
  for (const JsonView& item : *items) {
    auto member = decodeMember(item);
    if (!member) return std::unexpected(member.error());
    work.push_back(std::move(*member));
  }
  return work;
}

nlohmann::ordered_json encodeWorkingJudgement(const WorkingJudgement& judgement) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  object["settlement"] = encodeRecord(judgement.settlement);
  nlohmann::ordered_json members = nlohmann::ordered_json::array();
  for (const WorkingMemberJudgement& member : judgement.members) members.push_back(encodeMember(member));
  object["members"] = std::move(members);
  return object;
}

}  // namespace kovi
