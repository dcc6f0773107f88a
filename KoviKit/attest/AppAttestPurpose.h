#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// What a challenge or a signed record is for; every challenge and every
// envelope is bound to exactly one purpose, so an assertion made for one
// cannot be replayed as another.
enum class AppAttestPurpose { registerDeviceKey, submitWalkingEvidence, transferEvidenceWriter, submitPurrlSteps };

template <>
struct EnumNames<AppAttestPurpose> {
  static constexpr std::array table{
      std::pair{AppAttestPurpose::registerDeviceKey, std::string_view("registerDeviceKey")},
      std::pair{AppAttestPurpose::submitWalkingEvidence, std::string_view("submitWalkingEvidence")},
      std::pair{AppAttestPurpose::transferEvidenceWriter, std::string_view("transferEvidenceWriter")},
      std::pair{AppAttestPurpose::submitPurrlSteps, std::string_view("submitPurrlSteps")},
  };
};

// The attestation environment a key was made in.
enum class AppAttestEnvironment { development, production };

template <>
struct EnumNames<AppAttestEnvironment> {
  static constexpr std::array table{
      std::pair{AppAttestEnvironment::development, std::string_view("development")},
      std::pair{AppAttestEnvironment::production, std::string_view("production")},
  };
};

}  // namespace kovi
