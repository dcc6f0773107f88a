#pragma once

#include <map>
#include <optional>
#include <string>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// One account's Health sharing consent.
struct HealthShareConsent {
  // The user has been asked for Health access.
  bool requestedAccess = false;
  // Steps may be shared automatically.
  bool autoShare = false;
  bool operator==(const HealthShareConsent&) const = default;
};

template <>
struct JsonRecordFields<HealthShareConsent> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("requestedAccess", &HealthShareConsent::requestedAccess),
                                            field("autoShare", &HealthShareConsent::autoShare)};
};

// The stored document: {"version": 1, "accounts": {"<account id>": consent}}.
struct HealthShareConsentDocument {
  int version = 0;
  std::map<std::string, HealthShareConsent> accounts;
  bool operator==(const HealthShareConsentDocument&) const = default;
};

template <>
struct JsonRecordFields<HealthShareConsentDocument> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("version", &HealthShareConsentDocument::version),
                                            field("accounts", &HealthShareConsentDocument::accounts)};
};

// The earlier single-account form: {"requestedAccess": true, "autoShare": false},
// `autoShare` optional.
struct HealthShareLegacyConsent {
  bool requestedAccess = false;
  std::optional<bool> autoShare;
  bool operator==(const HealthShareLegacyConsent&) const = default;
};

template <>
struct JsonRecordFields<HealthShareLegacyConsent> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{field("requestedAccess", &HealthShareLegacyConsent::requestedAccess),
                                            field("autoShare", &HealthShareLegacyConsent::autoShare)};
};

}  // namespace kovi
