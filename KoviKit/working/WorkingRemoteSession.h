#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingRemoteCommand.h"
#include "KoviKit/working/WorkingWireJson.h"

namespace kovi {

// One member's work session as the service keeps it: its window, the head
// of its accepted checkpoint chain, its totals and the commands sent to it.
struct WorkingRemoteSession {
  // Milliseconds of each kind of time the service accepted.
  struct Totals {
    std::int64_t active = 0;
    std::int64_t break_ = 0;
    std::int64_t idle = 0;
    std::int64_t unverified = 0;
    std::int64_t violation = 0;
    std::int64_t recovered = 0;
    bool operator==(const Totals&) const = default;
  };

  // How far the session's records could be verified.
  struct Integrity {
    enum class Status { verified, verifiedWithRecovery, partiallyVerified, unverified, invalid };
    enum class Confidence { pending, deviceSigned, degraded, invalid };
    Status status = Status::unverified;
    std::vector<std::string> reasons;
    std::int64_t acceptedMS = 0;
    std::int64_t missingMS = 0;
    std::int64_t recoveredMS = 0;
    bool pending = false;
    Confidence confidence = Confidence::pending;
    bool operator==(const Integrity&) const = default;
  };

  // The Mac's prepared scheduled start.
  struct ScheduledArm {
    std::int64_t version = 0;
    std::string actorID;
    std::string deviceID;
    std::string sessionID;
    std::int64_t epoch = 0;
    std::string roomID;
    std::string rulesHash;
    std::string windowID;
    UnixMillis startsAt = 0;
    UnixMillis authorizedUntil = 0;
    std::optional<UnixMillis> armedAt;
    bool operator==(const ScheduledArm&) const = default;
  };

  std::string id;
  std::string roomID;
  std::string accountID;
  std::string deviceID;
  std::string rulesHash;
  std::string state;
  UnixMillis preparedAt = 0;
  std::optional<UnixMillis> startedAt;
  UnixMillis expiresAt = 0;
  UnixMillis authorizedUntil = 0;
  std::optional<UnixMillis> sealedAt;
  std::int64_t epoch = 0;
  std::int64_t sequence = 0;
  std::string headHash;  // hash of the latest accepted checkpoint
  std::optional<UnixMillis> through;
  std::int64_t monotonicMS = 0;
  UnixMillis lastSeen = 0;
  bool completed = false;
  Totals totals;
  std::vector<WorkingRemoteCommand> commands;
  std::optional<Integrity> integrity;
  std::optional<WorkingOpaqueJson> coordinator;
  std::optional<WorkingOpaqueJson> protection;
  std::optional<ScheduledArm> scheduledArm;
  std::optional<std::string> tailKind;

  bool operator==(const WorkingRemoteSession&) const = default;
};

// Why an acknowledgement does not fit the session it names.
struct WorkingAcknowledgementRefusal {
  std::string reason;
  bool operator==(const WorkingAcknowledgementRefusal&) const = default;
};

// Records the Mac's acknowledgement on the command it names: the command
// takes the outcome as its status and the receipt as its `ack`. Nothing
// else changes: totals, `through` and the chain head move only with verified
// checkpoints, never with an acknowledgement. Refused when the receipt is for
// another session, device or epoch, names no command of the session, or
// claims a newer command that the session does not hold.
std::expected<void, WorkingAcknowledgementRefusal> recordAcknowledgement(WorkingRemoteSession& session,
                                                                        const WorkingRemoteCommand::Receipt& receipt);

// The command the session follows at `now`: the latest (by `at`, later in
// the list on a tie) that is applied, or still pending and not yet expired.
// A command superseded by a newer one leaves that newer one in force.
const WorkingRemoteCommand* commandInForce(const WorkingRemoteSession& session, UnixMillis now);

template <>
struct EnumNames<WorkingRemoteSession::Integrity::Status> {
  using S = WorkingRemoteSession::Integrity::Status;
  static constexpr std::array table{std::pair{S::verified, std::string_view("verified")},
                                    std::pair{S::verifiedWithRecovery, std::string_view("verifiedWithRecovery")},
                                    std::pair{S::partiallyVerified, std::string_view("partiallyVerified")},
                                    std::pair{S::unverified, std::string_view("unverified")},
                                    std::pair{S::invalid, std::string_view("invalid")}};
};

template <>
struct EnumNames<WorkingRemoteSession::Integrity::Confidence> {
  using C = WorkingRemoteSession::Integrity::Confidence;
  static constexpr std::array table{std::pair{C::pending, std::string_view("pending")},
                                    std::pair{C::deviceSigned, std::string_view("deviceSigned")},
                                    std::pair{C::degraded, std::string_view("degraded")},
                                    std::pair{C::invalid, std::string_view("invalid")}};
};

template <>
struct JsonRecordFields<WorkingRemoteSession::Totals> : LenientJsonRecord {
  using R = WorkingRemoteSession::Totals;
  static constexpr auto fields =
      std::tuple{field("active", &R::active), field("break", &R::break_), field("idle", &R::idle),
                 field("unverified", &R::unverified), field("violation", &R::violation),
                 field("recovered", &R::recovered)};
};

template <>
struct JsonRecordFields<WorkingRemoteSession::Integrity> : LenientJsonRecord {
  using R = WorkingRemoteSession::Integrity;
  static constexpr auto fields =
      std::tuple{field("status", &R::status),           field("reasons", &R::reasons),
                 field("acceptedMS", &R::acceptedMS),   field("missingMS", &R::missingMS),
                 field("recoveredMS", &R::recoveredMS), field("pending", &R::pending),
                 field("confidence", &R::confidence)};
};

// The internal reason an integrity summary with impossible totals is refused.
inline constexpr std::string_view kWorkingInvalidIntegrityTotals = "Invalid Working integrity millisecond totals";

// An integrity summary decodes by its field list and is then held to its
// totals: none negative, the recovered time inside the accepted time (it is
// part of it, never added twice) and accepted plus missing time within range.
template <>
struct JsonDecoder<WorkingRemoteSession::Integrity> {
  static Decoded<WorkingRemoteSession::Integrity> decode(const JsonView& json);
};

template <>
struct JsonRecordFields<WorkingRemoteSession::ScheduledArm> : LenientJsonRecord {
  using R = WorkingRemoteSession::ScheduledArm;
  static constexpr auto fields =
      std::tuple{field("version", &R::version),       field("actorID", &R::actorID),
                 field("deviceID", &R::deviceID),     field("sessionID", &R::sessionID),
                 field("epoch", &R::epoch),           field("roomID", &R::roomID),
                 field("rulesHash", &R::rulesHash),   field("windowID", &R::windowID),
                 field("startsAt", &R::startsAt),     field("authorizedUntil", &R::authorizedUntil),
                 field("armedAt", &R::armedAt)};
};

template <>
struct JsonRecordFields<WorkingRemoteSession> : LenientJsonRecord {
  using R = WorkingRemoteSession;
  static constexpr auto fields = std::tuple{field("id", &R::id),
                                            field("roomID", &R::roomID),
                                            field("accountID", &R::accountID),
                                            field("deviceID", &R::deviceID),
                                            field("rulesHash", &R::rulesHash),
                                            field("state", &R::state),
                                            field("preparedAt", &R::preparedAt),
                                            field("startedAt", &R::startedAt),
                                            field("expiresAt", &R::expiresAt),
                                            field("authorizedUntil", &R::authorizedUntil),
                                            field("sealedAt", &R::sealedAt),
                                            field("epoch", &R::epoch),
                                            field("sequence", &R::sequence),
                                            field("headHash", &R::headHash),
                                            field("through", &R::through),
                                            field("monotonicMS", &R::monotonicMS),
                                            field("lastSeen", &R::lastSeen),
                                            field("completed", &R::completed),
                                            field("totals", &R::totals),
                                            field("commands", &R::commands),
                                            field("integrity", &R::integrity),
                                            field("coordinator", &R::coordinator),
                                            field("protection", &R::protection),
                                            field("scheduledArm", &R::scheduledArm),
                                            field("tailKind", &R::tailKind)};
};

}  // namespace kovi
