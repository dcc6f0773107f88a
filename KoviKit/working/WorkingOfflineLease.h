#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// The point of a session's checkpoint chain the server last accepted:
// offline checkpoints continue from here.
struct WorkingOfflineAnchor {
  std::int64_t sequence = 0;
  std::string headHash;
  UnixMillis through = 0;
  std::int64_t monotonicMS = 0;
  bool operator==(const WorkingOfflineAnchor&) const = default;
};

// What the Mac asks for when it wants to keep counting without the service.
struct WorkingOfflineRequest {
  std::string requestID;
  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::int64_t sequence = 0;
  std::string headHash;
  UnixMillis at = 0;
  bool operator==(const WorkingOfflineRequest&) const = default;
};

// The service's permission to count offline for one session on one device,
// until `workUntil`, for checkpoints up to `maxSequence`, to be reconciled by
// `reconcileBy`. Signed by the server key `serverKeyID`.
struct WorkingOfflineLease {
  static constexpr int kVersion = 1;
  static constexpr std::string_view kSigningPurpose = "kovi-working-offline-lease-v1";

  int version = kVersion;
  std::string id;
  std::string requestID;
  std::string sessionID;
  std::string roomID;
  std::string accountID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::string rulesHash;
  std::string deviceKeyHash;
  std::string serverKeyID;
  UnixMillis issuedAt = 0;
  UnixMillis workUntil = 0;
  UnixMillis reconcileBy = 0;
  std::int64_t maxSequence = 0;
  WorkingOfflineAnchor anchor;
  bool operator==(const WorkingOfflineLease&) const = default;
};

// A lease as it travels: the lease and the base64 DER ECDSA P-256/SHA-256
// signature over the canonical JSON of
// {"purpose":"kovi-working-offline-lease-v1","lease":{…}}.
struct WorkingOfflineEnvelope {
  WorkingOfflineLease lease;
  std::string signature;
  bool operator==(const WorkingOfflineEnvelope&) const = default;
};

// What this device expects a lease to be for; the lease must equal it field
// by field.
struct WorkingOfflineBinding {
  std::string accountID;
  std::string roomID;
  std::string sessionID;
  std::string deviceID;
  std::int64_t epoch = 0;
  std::string rulesHash;
  std::string deviceKeyHash;
  WorkingOfflineAnchor anchor;
  bool operator==(const WorkingOfflineBinding&) const = default;
};

template <>
struct JsonRecordFields<WorkingOfflineAnchor> : StrictJsonRecord {
  using A = WorkingOfflineAnchor;
  static constexpr auto fields = std::tuple{field("sequence", &A::sequence), field("headHash", &A::headHash),
                                            field("through", &A::through), field("monotonicMS", &A::monotonicMS)};
};

template <>
struct JsonRecordFields<WorkingOfflineRequest> : StrictJsonRecord {
  using R = WorkingOfflineRequest;
  static constexpr auto fields =
      std::tuple{field("requestID", &R::requestID), field("sessionID", &R::sessionID), field("deviceID", &R::deviceID),
                 field("epoch", &R::epoch),         field("sequence", &R::sequence),   field("headHash", &R::headHash),
                 field("at", &R::at)};
};

template <>
struct JsonRecordFields<WorkingOfflineLease> : StrictJsonRecord {
  using L = WorkingOfflineLease;
  static constexpr auto fields = std::tuple{
      field("version", &L::version),         field("id", &L::id),
      field("requestID", &L::requestID),     field("sessionID", &L::sessionID),
      field("roomID", &L::roomID),           field("accountID", &L::accountID),
      field("deviceID", &L::deviceID),       field("epoch", &L::epoch),
      field("rulesHash", &L::rulesHash),     field("deviceKeyHash", &L::deviceKeyHash),
      field("serverKeyID", &L::serverKeyID), field("issuedAt", &L::issuedAt),
      field("workUntil", &L::workUntil),     field("reconcileBy", &L::reconcileBy),
      field("maxSequence", &L::maxSequence), field("anchor", &L::anchor)};
};

template <>
struct JsonRecordFields<WorkingOfflineEnvelope> : StrictJsonRecord {
  using E = WorkingOfflineEnvelope;
  static constexpr auto fields = std::tuple{field("lease", &E::lease), field("signature", &E::signature)};
};

template <>
struct JsonRecordFields<WorkingOfflineBinding> : StrictJsonRecord {
  using B = WorkingOfflineBinding;
  static constexpr auto fields =
      std::tuple{field("accountID", &B::accountID), field("roomID", &B::roomID),
                 field("sessionID", &B::sessionID), field("deviceID", &B::deviceID),
                 field("epoch", &B::epoch),         field("rulesHash", &B::rulesHash),
                 field("deviceKeyHash", &B::deviceKeyHash), field("anchor", &B::anchor)};
};

// Decodes an envelope strictly: exactly its keys at every level, no key
// repeated anywhere (the lease is signed, and two readers must never see two
// different leases in one text), version 1, and times and sequences that
// can describe a lease (issued before `workUntil`, reconciled no earlier than
// it, `maxSequence` not behind the anchor).
Decoded<WorkingOfflineEnvelope> decodeWorkingOfflineEnvelope(std::string_view text);

}  // namespace kovi
