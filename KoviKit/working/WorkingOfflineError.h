#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Why an offline lease cannot be used, or offline counting must stop.
struct WorkingOfflineError {
  enum class Kind {
    invalidEnvelope,     // the envelope does not decode strictly
    invalidSignature,    // unknown server key, or the signature does not verify
    bindingMismatch,     // the lease is for another account, room, session, device, epoch, rules, key or anchor
    unavailable,         // no lease installed, or its sequence numbers are used up
    expired,             // past the lease's `workUntil` or the offline limit
    clockDiscontinuity,  // a reboot, or a wall or monotonic clock that jumped
    checkpointChain,     // an offline checkpoint that does not continue the chain
  };
  Kind kind;
  // Which field, key path or clock; never a key or a signature.
  std::string detail;
  bool operator==(const WorkingOfflineError&) const = default;
};

template <>
struct EnumNames<WorkingOfflineError::Kind> {
  using Kind = WorkingOfflineError::Kind;
  static constexpr std::array table{std::pair{Kind::invalidEnvelope, std::string_view("invalidEnvelope")},
                                    std::pair{Kind::invalidSignature, std::string_view("invalidSignature")},
                                    std::pair{Kind::bindingMismatch, std::string_view("bindingMismatch")},
                                    std::pair{Kind::unavailable, std::string_view("unavailable")},
                                    std::pair{Kind::expired, std::string_view("expired")},
                                    std::pair{Kind::clockDiscontinuity, std::string_view("clockDiscontinuity")},
                                    std::pair{Kind::checkpointChain, std::string_view("checkpointChain")}};
};

}  // namespace kovi
