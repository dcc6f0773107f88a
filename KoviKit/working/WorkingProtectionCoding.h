#pragma once

// JSON of the protection records, keys in declared order. Proofs and
// transitions are signed over exactly this form.

#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingProtectionFences.h"
#include "KoviKit/working/WorkingProtectionPolicy.h"
#include "KoviKit/working/WorkingProtectionProof.h"
#include "KoviKit/working/WorkingProtectionSigning.h"
#include "KoviKit/working/WorkingProtectionTransition.h"
#include "KoviKit/working/WorkingProtectionWindow.h"

namespace kovi {

template <>
struct JsonRecordFields<WorkingProtectionPolicy> : StrictJsonRecord {
  using P = WorkingProtectionPolicy;
  static constexpr auto fields = std::tuple{
      field("version", &P::version),       field("revision", &P::revision),
      field("desiredMode", &P::desiredMode), field("requestedAt", &P::requestedAt),
      field("until", &P::until),           field("commandID", &P::commandID),
      field("bypassUses", &P::bypassUses), field("bypassRemaining", &P::bypassRemaining),
      field("returnMode", &P::returnMode),
  };
};

template <>
struct JsonRecordFields<WorkingProtectionProof> : StrictJsonRecord {
  using P = WorkingProtectionProof;
  static constexpr auto fields = std::tuple{
      field("sessionID", &P::sessionID), field("deviceID", &P::deviceID), field("epoch", &P::epoch),
      field("revision", &P::revision),   field("rulesHash", &P::rulesHash), field("mode", &P::mode),
      field("at", &P::at),               field("sequence", &P::sequence), field("capabilities", &P::capabilities),
  };
};

template <>
struct JsonRecordFields<WorkingProtectionTransition> : StrictJsonRecord {
  using T = WorkingProtectionTransition;
  static constexpr auto fields =
      std::tuple{field("sessionID", &T::sessionID), field("deviceID", &T::deviceID),
                 field("epoch", &T::epoch),         field("commandID", &T::commandID),
                 field("at", &T::at),               field("cause", &T::cause),
                 field("expectedCommandID", &T::expectedCommandID)};
};

template <>
struct JsonRecordFields<WorkingProtectionRevisionFence> : StrictJsonRecord {
  using F = WorkingProtectionRevisionFence;
  static constexpr auto fields =
      std::tuple{field("sessionID", &F::sessionID),         field("epoch", &F::epoch),
                 field("revision", &F::revision),           field("emergencyReleased", &F::emergencyReleased),
                 field("policy", &F::policy),               field("expiryMonotonicMS", &F::expiryMonotonicMS)};
};

template <>
struct JsonRecordFields<WorkingProtectionSessionFence> : StrictJsonRecord {
  using F = WorkingProtectionSessionFence;
  static constexpr auto fields = std::tuple{field("sessionID", &F::sessionID), field("preparedAt", &F::preparedAt),
                                            field("isClosed", &F::isClosed)};
};

template <>
struct JsonRecordFields<WorkingProtectionWindow> : StrictJsonRecord {
  using W = WorkingProtectionWindow;
  static constexpr auto fields =
      std::tuple{field("generation", &W::generation), field("ownerID", &W::ownerID),
                 field("sessionID", &W::sessionID),   field("rulesHash", &W::rulesHash),
                 field("startsAt", &W::startsAt),     field("endsAt", &W::endsAt)};
};

template <>
struct JsonRecordFields<WorkingProtectionProofRequest> : StrictJsonRecord {
  using R = WorkingProtectionProofRequest;
  static constexpr auto fields =
      std::tuple{field("action", &R::action), field("proof", &R::proof), field("signature", &R::signature)};
};

template <>
struct JsonRecordFields<WorkingProtectionTransitionRequest> : StrictJsonRecord {
  using R = WorkingProtectionTransitionRequest;
  static constexpr auto fields =
      std::tuple{field("action", &R::action), field("transition", &R::transition), field("signature", &R::signature)};
};

// A window that decodes but fails its checks is refused at its position with
// "InvalidWindow: " and the failed check.
Decoded<WorkingProtectionWindow> decodeWorkingProtectionWindow(const JsonView& json);

}  // namespace kovi
