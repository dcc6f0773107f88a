#include "KoviKit/working/WorkingRemoteSession.h"

#include <algorithm>

namespace kovi {
namespace {

using Outcome = WorkingCommandAcknowledgement::Outcome;
using Status = WorkingRemoteCommand::Status;

std::unexpected<WorkingAcknowledgementRefusal> refuse(std::string reason) {
  return std::unexpected(WorkingAcknowledgementRefusal{std::move(reason)});
}

Status statusOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::applied: return Status::applied;
    case Outcome::rejected: return Status::rejected;
    case Outcome::expired: return Status::expired;
    case Outcome::superseded: return Status::superseded;
  }
  return Status::rejected;
}

}  // namespace

std::expected<void, WorkingAcknowledgementRefusal> recordAcknowledgement(WorkingRemoteSession& session,
                                                                        const WorkingRemoteCommand::Receipt& receipt) {
  if (receipt.sessionID != session.id) return refuse("the acknowledgement is for session " + receipt.sessionID);
  if (receipt.deviceID != session.deviceID || receipt.epoch != session.epoch) {
    return refuse("the acknowledgement comes from another device or epoch of the session");
  }
  const auto command = std::ranges::find(session.commands, receipt.commandID, &WorkingRemoteCommand::id);
  if (command == session.commands.end()) return refuse("the session holds no command " + receipt.commandID);
  if (receipt.outcome == Outcome::superseded && receipt.reason == WorkingCommandAcknowledgement::Reason::newerCommand) {
    const bool hasNewer = std::ranges::any_of(session.commands, [&](const WorkingRemoteCommand& other) {
      return &other != &*command && other.at > command->at;
    });
    if (!hasNewer) return refuse("command " + receipt.commandID + " has no newer command to be superseded by");
  }
  command->status = statusOf(receipt.outcome);
  command->ack = receipt;
  return {};
}

Decoded<WorkingRemoteSession::Integrity> JsonDecoder<WorkingRemoteSession::Integrity>::decode(const JsonView& json) {
  auto integrity = decodeRecord<WorkingRemoteSession::Integrity>(json);
  if (!integrity) return integrity;
  std::int64_t covered = 0;
  if (integrity->acceptedMS < 0 || integrity->missingMS < 0 || integrity->recoveredMS < 0 ||
      integrity->recoveredMS > integrity->acceptedMS ||
      __builtin_add_overflow(integrity->acceptedMS, integrity->missingMS, &covered)) {
    return std::unexpected(json.error(std::string(kWorkingInvalidIntegrityTotals)));
  }
  return integrity;
}

const WorkingRemoteCommand* commandInForce(const WorkingRemoteSession& session, UnixMillis now) {
  const WorkingRemoteCommand* inForce = nullptr;
  for (const WorkingRemoteCommand& command : session.commands) {
    const Status status = command.status.value_or(Status::pending);
    const bool counts = status == Status::applied || (status == Status::pending && now < command.expiresAt);
    if (counts && (inForce == nullptr || command.at >= inForce->at)) inForce = &command;
  }
  return inForce;
}

}  // namespace kovi
