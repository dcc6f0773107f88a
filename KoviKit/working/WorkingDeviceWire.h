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
#include "KoviKit/working/WorkingRemoteDevice.h"
#include "KoviKit/working/WorkingWireJson.h"

namespace kovi {

// The messages a device sends about itself.
struct WorkingDeviceWire {
  enum class Platform { macos, ios };

  // Enrols a device key for an account; `requestID` makes a retried
  // registration land once.
  struct Registration {
    std::string accountID;
    std::string requestID;
    Platform platform = Platform::macos;
    std::string publicKey;
    bool operator==(const Registration&) const = default;
  };

  // What the device can do right now, for the rules it is ready for.
  struct Readiness {
    std::string deviceID;
    UnixMillis at = 0;
    std::int64_t sequence = 0;
    WorkingRemoteDevice::Capabilities capabilities;
    std::optional<std::string> rulesHash;
    bool operator==(const Readiness&) const = default;
  };

  // The common envelope of a signed device message: the purpose it was
  // signed under and the signed record itself.
  struct Purposed {
    std::string purpose;
    WorkingOpaqueJson message;
    bool operator==(const Purposed&) const = default;
  };
};

template <>
struct EnumNames<WorkingDeviceWire::Platform> {
  static constexpr std::array table{
      std::pair{WorkingDeviceWire::Platform::macos, std::string_view("macos")},
      std::pair{WorkingDeviceWire::Platform::ios, std::string_view("ios")},
  };
};

template <>
struct JsonRecordFields<WorkingDeviceWire::Registration> : LenientJsonRecord {
  using R = WorkingDeviceWire::Registration;
  static constexpr auto fields = std::tuple{field("accountID", &R::accountID), field("requestID", &R::requestID),
                                            field("platform", &R::platform), field("publicKey", &R::publicKey)};
};

template <>
struct JsonRecordFields<WorkingDeviceWire::Readiness> : LenientJsonRecord {
  using R = WorkingDeviceWire::Readiness;
  static constexpr auto fields =
      std::tuple{field("deviceID", &R::deviceID), field("at", &R::at), field("sequence", &R::sequence),
                 field("capabilities", &R::capabilities), field("rulesHash", &R::rulesHash)};
};

template <>
struct JsonRecordFields<WorkingDeviceWire::Purposed> : LenientJsonRecord {
  using R = WorkingDeviceWire::Purposed;
  static constexpr auto fields = std::tuple{field("purpose", &R::purpose), field("message", &R::message)};
};

}  // namespace kovi
