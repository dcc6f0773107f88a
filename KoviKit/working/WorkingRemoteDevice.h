#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingDeviceCapabilities.h"

namespace kovi {

// A member's registered device as the service knows it, with what it last
// reported it can do.
struct WorkingRemoteDevice {
  using Capabilities = WorkingReportedCapabilities;

  std::string id;
  std::string accountID;
  std::string platform;
  std::string name;
  std::optional<UnixMillis> revokedAt;
  UnixMillis at = 0;
  std::int64_t sequence = 0;  // the device's monotonic report counter
  std::optional<std::string> rulesHash;
  Capabilities capabilities;

  bool operator==(const WorkingRemoteDevice&) const = default;
};

template <>
struct JsonRecordFields<WorkingRemoteDevice> : LenientJsonRecord {
  using R = WorkingRemoteDevice;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),           field("accountID", &R::accountID), field("platform", &R::platform),
                 field("name", &R::name),       field("revokedAt", &R::revokedAt), field("at", &R::at),
                 field("sequence", &R::sequence), field("rulesHash", &R::rulesHash),
                 field("capabilities", &R::capabilities)};
};

}  // namespace kovi
