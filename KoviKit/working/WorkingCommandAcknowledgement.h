#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// What the Mac signs when it handles a remote command. An acknowledgement
// says what became of the command; it never adds work time.
struct WorkingCommandAcknowledgement {
  enum class Outcome { applied, rejected, expired, superseded };
  enum class Reason { none, notReady, policyRejected, deliveryExpired, newerCommand, stateConflict };

  std::string sessionID;
  std::string commandID;
  std::string deviceID;
  std::int64_t epoch = 0;
  UnixMillis at = 0;
  Outcome outcome = Outcome::applied;
  Reason reason = Reason::none;

  bool operator==(const WorkingCommandAcknowledgement&) const = default;
};

template <>
struct EnumNames<WorkingCommandAcknowledgement::Outcome> {
  using O = WorkingCommandAcknowledgement::Outcome;
  static constexpr std::array table{
      std::pair{O::applied, std::string_view("applied")}, std::pair{O::rejected, std::string_view("rejected")},
      std::pair{O::expired, std::string_view("expired")}, std::pair{O::superseded, std::string_view("superseded")}};
};

template <>
struct EnumNames<WorkingCommandAcknowledgement::Reason> {
  using R = WorkingCommandAcknowledgement::Reason;
  static constexpr std::array table{std::pair{R::none, std::string_view("none")},
                                    std::pair{R::notReady, std::string_view("notReady")},
                                    std::pair{R::policyRejected, std::string_view("policyRejected")},
                                    std::pair{R::deliveryExpired, std::string_view("deliveryExpired")},
                                    std::pair{R::newerCommand, std::string_view("newerCommand")},
                                    std::pair{R::stateConflict, std::string_view("stateConflict")}};
};

// The field list an acknowledgement shares with its receipt.
inline constexpr auto kWorkingCommandAcknowledgementFields = std::tuple{
    field("sessionID", &WorkingCommandAcknowledgement::sessionID),
    field("commandID", &WorkingCommandAcknowledgement::commandID),
    field("deviceID", &WorkingCommandAcknowledgement::deviceID),
    field("epoch", &WorkingCommandAcknowledgement::epoch),
    field("at", &WorkingCommandAcknowledgement::at),
    field("outcome", &WorkingCommandAcknowledgement::outcome),
    field("reason", &WorkingCommandAcknowledgement::reason)};

template <>
struct JsonRecordFields<WorkingCommandAcknowledgement> : LenientJsonRecord {
  static constexpr auto fields = kWorkingCommandAcknowledgementFields;
};

}  // namespace kovi
