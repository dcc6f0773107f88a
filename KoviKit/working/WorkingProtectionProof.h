#pragma once

#include <cstdint>
#include <string>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingDeviceCapabilities.h"
#include "KoviKit/working/WorkingProtectionPolicy.h"

namespace kovi {

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
