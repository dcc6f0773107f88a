#include "KoviKit/working/WorkingProtectionFences.h"

namespace kovi {

bool WorkingProtectionRevisionFence::admits(std::int64_t candidateEpoch, std::int64_t candidateRevision) const {
  return candidateEpoch > epoch || (candidateEpoch == epoch && candidateRevision > revision);
}

bool WorkingProtectionRevisionFence::isExpired(std::int64_t monotonicNowMS) const {
  return expiryMonotonicMS && monotonicNowMS >= *expiryMonotonicMS;
}

bool WorkingProtectionSessionFence::admits(std::string_view candidateSessionID) const {
  return !isClosed && (!sessionID || *sessionID == candidateSessionID);
}

}  // namespace kovi
