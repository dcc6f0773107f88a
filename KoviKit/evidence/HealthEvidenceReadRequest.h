#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"

namespace kovi {

// What the health store says about the permission prompt for step data.
enum class HealthEvidenceAuthorization {
  requestNotCompleted,
  requestCompleted,
  unknown,
};

template <>
struct EnumNames<HealthEvidenceAuthorization> {
  static constexpr std::array table{
      std::pair{HealthEvidenceAuthorization::requestNotCompleted, std::string_view("requestNotCompleted")},
      std::pair{HealthEvidenceAuthorization::requestCompleted, std::string_view("requestCompleted")},
      std::pair{HealthEvidenceAuthorization::unknown, std::string_view("unknown")},
  };
};

// The days to read and the instant up to which buckets count as closed.
struct HealthEvidenceReadRequest {
  std::vector<HealthEvidenceDayWindow> days;
  // Buckets ending after it are provisional.
  UnixMillis observationCutoff = 0;
  // Whether the Health permission prompt has been completed, when the caller
  // knows; otherwise the store's own answer counts.
  std::optional<bool> authorizationRequestCompleted;
  bool operator==(const HealthEvidenceReadRequest&) const = default;
};

// The read of every requested day, in request order.
struct HealthEvidenceReadResult {
  HealthEvidenceAuthorization authorization = HealthEvidenceAuthorization::unknown;
  std::vector<HealthEvidenceDayRead> days;
  bool operator==(const HealthEvidenceReadResult&) const = default;
};

// What the app does with a day's outcome.
enum class HealthEvidenceReadHandling {
  // Buckets were read: build the day's value from them.
  useBuckets,
  // Nothing readable: the day stays missing (never zero steps) and is read
  // again later.
  keepMissing,
  // Show the Health permission prompt before reading again.
  askPermission,
  // No Health on this device: stop reading evidence here.
  stopReading,
  // A passing failure: read again later.
  retryLater,
};

template <>
struct EnumNames<HealthEvidenceReadHandling> {
  static constexpr std::array table{
      std::pair{HealthEvidenceReadHandling::useBuckets, std::string_view("useBuckets")},
      std::pair{HealthEvidenceReadHandling::keepMissing, std::string_view("keepMissing")},
      std::pair{HealthEvidenceReadHandling::askPermission, std::string_view("askPermission")},
      std::pair{HealthEvidenceReadHandling::stopReading, std::string_view("stopReading")},
      std::pair{HealthEvidenceReadHandling::retryLater, std::string_view("retryLater")},
  };
};

HealthEvidenceReadHandling handlingOf(HealthEvidenceReadOutcome outcome);

// The authorization a result reports: the caller's knowledge of the prompt
// when it has some, else the store's answer.
HealthEvidenceAuthorization effectiveAuthorization(const HealthEvidenceReadRequest& request,
                                                   HealthEvidenceAuthorization storeAnswer);

}  // namespace kovi
