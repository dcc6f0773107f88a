#pragma once

#include <string>

namespace kovi {

// Why the device key could not do what was asked. `code` is the service's
// vocabulary ("attestation_unsupported", "attestation_failed",
// "assertion_failed"), so the message table maps it like a service answer;
// `detail` is for logs and never holds key material.
struct AppAttestError {
  std::string code;
  std::string detail;
  bool operator==(const AppAttestError&) const = default;
};

}  // namespace kovi
