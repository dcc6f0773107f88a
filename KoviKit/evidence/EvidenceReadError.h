#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// Why a read could not be scheduled or a cursor not used or kept.
enum class EvidenceReadError {
  invalidScope,
  invalidCandidates,
  noCandidates,
  // A read of the same scope is in flight.
  readInProgress,
  // The stored cursor cannot be used.
  invalidStoredCursor,
  // A stored `version` that this build does not know.
  unsupportedStoredVersion,
  // A stored file above the size bound.
  storageTooLarge,
  // The storage itself failed: a cursor could not be written, or its file
  // could not be read (permissions, a full disk, a file in the folder's place).
  storageUnavailable,
};

template <>
struct EnumNames<EvidenceReadError> {
  static constexpr std::array table{
      std::pair{EvidenceReadError::invalidScope, std::string_view("invalidScope")},
      std::pair{EvidenceReadError::invalidCandidates, std::string_view("invalidCandidates")},
      std::pair{EvidenceReadError::noCandidates, std::string_view("noCandidates")},
      std::pair{EvidenceReadError::readInProgress, std::string_view("readInProgress")},
      std::pair{EvidenceReadError::invalidStoredCursor, std::string_view("invalidStoredCursor")},
      std::pair{EvidenceReadError::unsupportedStoredVersion, std::string_view("unsupportedStoredVersion")},
      std::pair{EvidenceReadError::storageTooLarge, std::string_view("storageTooLarge")},
      std::pair{EvidenceReadError::storageUnavailable, std::string_view("storageUnavailable")},
  };
};

// An `EvidenceReadError` and, for logs and the `kovi` tool, what exactly was
// wrong ("…/3f2a….json: lastItemID: missing key").
struct EvidenceReadFailure {
  EvidenceReadError error;
  std::string detail;
  bool operator==(const EvidenceReadFailure&) const = default;
};

}  // namespace kovi
