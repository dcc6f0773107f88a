#pragma once

#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingCheckpoint.h"

namespace kovi {

// A checkpoint with the device key's signature over its signed text
// {"purpose": "kovi-working-checkpoint-v1", "checkpoint": …}, in the compact
// assertion form (base64 of authenticator data and DER signature). This is
// what the Mac uploads.
struct WorkingSignedCheckpoint {
  WorkingCheckpoint checkpoint;
  std::string signature;
  bool operator==(const WorkingSignedCheckpoint&) const = default;
};

template <>
struct JsonRecordFields<WorkingSignedCheckpoint> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("checkpoint", &WorkingSignedCheckpoint::checkpoint),
                                            field("signature", &WorkingSignedCheckpoint::signature)};
};

}  // namespace kovi
