#pragma once

#include <cstdint>
#include <string>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingProtectionPolicy.h"

namespace kovi {

// What a device can protect and observe, as it reports it with every proof.
struct WorkingDeviceCapabilities {
  bool activity = false;
  bool appBlocking = false;
  bool websiteBlocking = false;
  bool iphoneShield = false;
  bool accessibility = false;

  bool operator==(const WorkingDeviceCapabilities&) const = default;
};

// A device's signed report that it applies a policy revision under a rule
// set (`rulesHash`, see workingRulesHash). `sequence` grows with every proof
// the device sends for the session.
struct WorkingProtectionProof {
  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::int64_t revision = 0;
  std::string rulesHash;
  WorkingProtectionPolicy::Mode mode = WorkingProtectionPolicy::Mode::active;
  UnixMillis at = 0;
  std::int64_t sequence = 0;
  WorkingDeviceCapabilities capabilities;

  bool operator==(const WorkingProtectionProof&) const = default;
};

}  // namespace kovi
