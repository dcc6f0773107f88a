#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingCommandAcknowledgement.h"
#include "KoviKit/working/WorkingProtectionCoding.h"
#include "KoviKit/working/WorkingProtectionPolicy.h"
#include "KoviKit/working/WorkingProtectionTransition.h"
#include "KoviKit/working/WorkingWireJson.h"

namespace kovi {

// A request sent to a member's Mac through the service (a break, a resume,
// a bypass), with what became of it.
struct WorkingRemoteCommand {
  enum class Status { pending, applied, rejected, expired, superseded };

  // The Mac's signed acknowledgement as the service received it.
  struct Receipt : WorkingCommandAcknowledgement {
    std::string signature;
    UnixMillis receivedAt = 0;
    bool operator==(const Receipt&) const = default;
  };

  // A protection transition the Mac made on its own (idle, pomodoro), with
  // its signature.
  struct AutomaticTransition {
    WorkingProtectionTransition transition;
    std::string signature;
    bool operator==(const AutomaticTransition&) const = default;
  };

  std::string id;
  std::string kind;  // the requested action
  UnixMillis at = 0;
  UnixMillis expiresAt = 0;
  std::optional<std::int64_t> protocolVersion;
  std::optional<std::string> deviceID;
  std::optional<std::int64_t> epoch;
  std::optional<Status> status;
  std::optional<bool> fenceActive;
  std::optional<Receipt> ack;
  std::optional<std::int64_t> protectionRevision;
  std::optional<WorkingProtectionPolicy::Mode> protectionMode;
  std::optional<UnixMillis> bypassUntil;
  std::optional<std::string> expectedCommandID;
  std::optional<AutomaticTransition> automaticTransition;
  std::optional<std::string> automaticCause;

  bool operator==(const WorkingRemoteCommand&) const = default;
};

template <>
struct EnumNames<WorkingRemoteCommand::Status> {
  using S = WorkingRemoteCommand::Status;
  static constexpr std::array table{
      std::pair{S::pending, std::string_view("pending")}, std::pair{S::applied, std::string_view("applied")},
      std::pair{S::rejected, std::string_view("rejected")}, std::pair{S::expired, std::string_view("expired")},
      std::pair{S::superseded, std::string_view("superseded")}};
};

template <>
struct JsonRecordFields<WorkingRemoteCommand::Receipt> : LenientJsonRecord {
  using R = WorkingRemoteCommand::Receipt;
  static constexpr auto fields = std::tuple_cat(
      kWorkingCommandAcknowledgementFields,
      std::tuple{field("signature", &R::signature), field("receivedAt", &R::receivedAt)});
};

template <>
struct JsonRecordFields<WorkingRemoteCommand::AutomaticTransition> : LenientJsonRecord {
  using R = WorkingRemoteCommand::AutomaticTransition;
  static constexpr auto fields = std::tuple{field("transition", &R::transition), field("signature", &R::signature)};
};

template <>
struct JsonRecordFields<WorkingRemoteCommand> : LenientJsonRecord {
  using R = WorkingRemoteCommand;
  static constexpr auto fields = std::tuple{field("id", &R::id),
                                            field("kind", &R::kind),
                                            field("at", &R::at),
                                            field("expiresAt", &R::expiresAt),
                                            field("protocolVersion", &R::protocolVersion),
                                            field("deviceID", &R::deviceID),
                                            field("epoch", &R::epoch),
                                            field("status", &R::status),
                                            field("fenceActive", &R::fenceActive),
                                            field("ack", &R::ack),
                                            field("protectionRevision", &R::protectionRevision),
                                            field("protectionMode", &R::protectionMode),
                                            field("bypassUntil", &R::bypassUntil),
                                            field("expectedCommandID", &R::expectedCommandID),
                                            field("automaticTransition", &R::automaticTransition),
                                            field("automaticCause", &R::automaticCause)};
};

}  // namespace kovi
