#pragma once

#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// What a device can protect and observe, as it reports it with every proof
// and as the service repeats it in its answers.
struct WorkingDeviceCapabilities {
  bool activity = false;
  bool appBlocking = false;
  bool websiteBlocking = false;
  bool iphoneShield = false;
  bool accessibility = false;

  bool operator==(const WorkingDeviceCapabilities&) const = default;
};

// The one field list. Inside a signed proof the record is read strictly: a
// key the device did not sign under this list is refused.
template <>
struct JsonRecordFields<WorkingDeviceCapabilities> : StrictJsonRecord {
  using C = WorkingDeviceCapabilities;
  static constexpr auto fields =
      std::tuple{field("activity", &C::activity), field("appBlocking", &C::appBlocking),
                 field("websiteBlocking", &C::websiteBlocking), field("iphoneShield", &C::iphoneShield),
                 field("accessibility", &C::accessibility)};
};

// The same record where a service answer carries it: the same field list read
// leniently, since a newer service may report capabilities this client does
// not know yet.
struct WorkingReportedCapabilities : WorkingDeviceCapabilities {
  bool operator==(const WorkingReportedCapabilities&) const = default;
};

template <>
struct JsonRecordFields<WorkingReportedCapabilities> : LenientJsonRecord {
  static constexpr auto fields = JsonRecordFields<WorkingDeviceCapabilities>::fields;
};

}  // namespace kovi
