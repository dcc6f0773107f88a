#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingRemoteResult.h"

namespace kovi {

// The closing of a working kovi: the result with the hashes that pin it, the
// review and dispute window, the evidence behind it and how it was paid.
struct WorkingFinalization {
  // One stretch of session evidence, as accepted or excluded.
  struct Evidence {
    std::string id;
    std::string sessionID;
    std::optional<std::string> accountID;
    UnixMillis start = 0;
    UnixMillis end = 0;
    std::string kind;
    std::string integrity;
    std::optional<std::string> classification;
    std::optional<bool> excluded;
    std::optional<std::string> reason;
    bool operator==(const Evidence&) const = default;
  };

  struct Dispute {
    std::string id;
    std::string accountID;
    std::string status;
    UnixMillis openedAt = 0;
    std::optional<std::string> reason;
    std::optional<UnixMillis> resolvedAt;
    std::optional<std::vector<std::string>> evidenceIDs;
    bool operator==(const Dispute&) const = default;
  };

  // A reviewer's decision; decisions chain result versions by hash.
  struct ReviewDecision {
    std::string id;
    std::string decision;
    std::string reason;
    std::string previousResultHash;
    std::string nextResultHash;
    std::int64_t previousResultVersion = 0;
    std::int64_t nextResultVersion = 0;
    bool operator==(const ReviewDecision&) const = default;
  };

  struct SettlementReceipt {
    std::string transactionHash;
    UnixMillis at = 0;
    std::string kind;
    bool operator==(const SettlementReceipt&) const = default;
  };

  std::string roomID;
  std::string status;
  std::string rulesHash;
  std::string snapshotHash;
  std::string resultsHash;
  std::string evidenceHash;
  UnixMillis createdAt = 0;
  UnixMillis reviewDeadline = 0;
  WorkingRemoteResult result;
  std::vector<Dispute> disputes;
  std::optional<bool> chainAvailable;
  std::string paymentStatus;
  std::optional<std::string> protocol;
  std::optional<UnixMillis> evidenceClosesAt;
  std::optional<UnixMillis> settlementClosesAt;
  std::optional<std::int64_t> resultVersion;
  std::optional<SettlementReceipt> settlementReceipt;
  std::optional<std::vector<Evidence>> ownEvidence;
  std::optional<bool> ownEvidenceTruncated;
  std::optional<std::vector<Evidence>> reviewEvidence;
  std::optional<std::string> reviewEvidenceNextAfter;  // paging cursor
  std::vector<ReviewDecision> reviewDecisions;

  bool operator==(const WorkingFinalization&) const = default;
};

template <>
struct JsonRecordFields<WorkingFinalization::Evidence> : LenientJsonRecord {
  using R = WorkingFinalization::Evidence;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),
                 field("sessionID", &R::sessionID),
                 field("accountID", &R::accountID),
                 field("start", &R::start),
                 field("end", &R::end),
                 field("kind", &R::kind),
                 field("integrity", &R::integrity),
                 field("classification", &R::classification),
                 field("excluded", &R::excluded),
                 field("reason", &R::reason)};
};

template <>
struct JsonRecordFields<WorkingFinalization::Dispute> : LenientJsonRecord {
  using R = WorkingFinalization::Dispute;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),           field("accountID", &R::accountID),
                 field("status", &R::status),   field("openedAt", &R::openedAt),
                 field("reason", &R::reason),   field("resolvedAt", &R::resolvedAt),
                 field("evidenceIDs", &R::evidenceIDs)};
};

template <>
struct JsonRecordFields<WorkingFinalization::ReviewDecision> : LenientJsonRecord {
  using R = WorkingFinalization::ReviewDecision;
  static constexpr auto fields =
      std::tuple{field("id", &R::id),
                 field("decision", &R::decision),
                 field("reason", &R::reason),
                 field("previousResultHash", &R::previousResultHash),
                 field("nextResultHash", &R::nextResultHash),
                 field("previousResultVersion", &R::previousResultVersion),
                 field("nextResultVersion", &R::nextResultVersion)};
};

template <>
struct JsonRecordFields<WorkingFinalization::SettlementReceipt> : LenientJsonRecord {
  using R = WorkingFinalization::SettlementReceipt;
  static constexpr auto fields =
      std::tuple{field("transactionHash", &R::transactionHash), field("at", &R::at), field("kind", &R::kind)};
};

template <>
struct JsonRecordFields<WorkingFinalization> : LenientJsonRecord {
  using R = WorkingFinalization;
  static constexpr auto fields = std::tuple{field("roomID", &R::roomID),
                                            field("status", &R::status),
                                            field("rulesHash", &R::rulesHash),
                                            field("snapshotHash", &R::snapshotHash),
                                            field("resultsHash", &R::resultsHash),
                                            field("evidenceHash", &R::evidenceHash),
                                            field("createdAt", &R::createdAt),
                                            field("reviewDeadline", &R::reviewDeadline),
                                            field("result", &R::result),
                                            field("disputes", &R::disputes),
                                            field("chainAvailable", &R::chainAvailable),
                                            field("paymentStatus", &R::paymentStatus),
                                            field("protocol", &R::protocol),
                                            field("evidenceClosesAt", &R::evidenceClosesAt),
                                            field("settlementClosesAt", &R::settlementClosesAt),
                                            field("resultVersion", &R::resultVersion),
                                            field("settlementReceipt", &R::settlementReceipt),
                                            field("ownEvidence", &R::ownEvidence),
                                            field("ownEvidenceTruncated", &R::ownEvidenceTruncated),
                                            field("reviewEvidence", &R::reviewEvidence),
                                            field("reviewEvidenceNextAfter", &R::reviewEvidenceNextAfter),
                                            field("reviewDecisions", &R::reviewDecisions)};
};

}  // namespace kovi
