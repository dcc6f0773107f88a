#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/attest/AppAttestError.h"
#include "KoviKit/attest/DeviceKeyService.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingOfflineError.h"
#include "KoviKit/working/WorkingOfflineRuntime.h"

namespace kovi {

// Which protections were active while the Mac counted offline.
struct WorkingOfflineProtection {
  bool activity = false;
  bool accessibility = false;
  bool appBlocking = false;
  bool websiteBlocking = false;
  bool operator==(const WorkingOfflineProtection&) const = default;
};

// The Mac's signed account of what it counted under a lease: the head of the
// offline chain it reached and the protections it kept.
struct WorkingOfflineProof {
  static constexpr int kVersion = 1;
  static constexpr std::string_view kSigningPurpose = "kovi-working-offline-proof-v1";

  int version = kVersion;
  std::string leaseID;
  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::int64_t sequence = 0;
  std::string checkpointHash;
  std::string rulesHash;
  WorkingOfflineProtection activeProtection;
  bool operator==(const WorkingOfflineProof&) const = default;
};

template <>
struct JsonRecordFields<WorkingOfflineProtection> : StrictJsonRecord {
  using P = WorkingOfflineProtection;
  static constexpr auto fields =
      std::tuple{field("activity", &P::activity), field("accessibility", &P::accessibility),
                 field("appBlocking", &P::appBlocking), field("websiteBlocking", &P::websiteBlocking)};
};

template <>
struct JsonRecordFields<WorkingOfflineProof> : StrictJsonRecord {
  using P = WorkingOfflineProof;
  static constexpr auto fields =
      std::tuple{field("version", &P::version),
                 field("leaseID", &P::leaseID),
                 field("sessionID", &P::sessionID),
                 field("deviceID", &P::deviceID),
                 field("epoch", &P::epoch),
                 field("sequence", &P::sequence),
                 field("checkpointHash", &P::checkpointHash),
                 field("rulesHash", &P::rulesHash),
                 field("activeProtection", &P::activeProtection)};
};

// The proof of `runtime`'s lease at its current chain head; `unavailable`
// without a lease.
std::expected<WorkingOfflineProof, WorkingOfflineError> makeWorkingOfflineProof(
    const WorkingOfflineRuntime& runtime, const WorkingOfflineProtection& protection);

// Signs `proof` with the device key `keyID` under "kovi-working-offline-proof-v1";
// returns the compact assertion the service expects in `signature`.
std::expected<std::string, AppAttestError> signWorkingOfflineProof(DeviceKeyService& keys, std::string_view keyID,
                                                                   const WorkingOfflineProof& proof);

}  // namespace kovi
