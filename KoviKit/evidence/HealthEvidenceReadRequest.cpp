#include "KoviKit/evidence/HealthEvidenceReadRequest.h"

namespace kovi {

HealthEvidenceReadHandling handlingOf(HealthEvidenceReadOutcome outcome) {
  switch (outcome) {
    case HealthEvidenceReadOutcome::measured: return HealthEvidenceReadHandling::useBuckets;
    case HealthEvidenceReadOutcome::noReadableData: return HealthEvidenceReadHandling::keepMissing;
    case HealthEvidenceReadOutcome::authorizationRequestNotCompleted: return HealthEvidenceReadHandling::askPermission;
    case HealthEvidenceReadOutcome::healthKitUnavailable: return HealthEvidenceReadHandling::stopReading;
    case HealthEvidenceReadOutcome::temporarilyUnavailable:
    case HealthEvidenceReadOutcome::readFailed: return HealthEvidenceReadHandling::retryLater;
  }
  return HealthEvidenceReadHandling::retryLater;
}

HealthEvidenceAuthorization effectiveAuthorization(const HealthEvidenceReadRequest& request,
                                                   HealthEvidenceAuthorization storeAnswer) {
  if (!request.authorizationRequestCompleted) return storeAnswer;
  return *request.authorizationRequestCompleted ? HealthEvidenceAuthorization::requestCompleted
                                                : HealthEvidenceAuthorization::requestNotCompleted;
}

}  // namespace kovi
