#pragma once

#include <cstddef>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/KeyValueStore.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingRuleLimits.h"
#include "KoviKit/working/WorkingScheduledStoreError.h"

namespace kovi {

// Remembers, per owner and room, whether scheduled readiness is switched on
// and which windows were already claimed, so a window is confirmed once even
// when the phone and the Mac both see it. Records live in the shared
// preferences domain under "kovi.working.scheduled-ready.v1." followed by the
// lowercase hex SHA-256 of the owner and room ids, each preceded by its UTF-8
// byte count as 8 big-endian bytes (so "ab"+"c" and "a"+"bc" never share a key).
class WorkingScheduledReadyStore {
 public:
  struct Record {
    int version = 1;
    std::string ownerID;
    std::string roomID;
    std::string rulesHash;
    bool enabled = false;
    // When each window id was claimed.
    std::map<std::string, UnixMillis> claims;
    UnixMillis latestClaimAt = 0;
    bool operator==(const Record&) const = default;
  };

  enum class ClaimOutcome {
    claimed,         // first claim of this window
    alreadyClaimed,  // someone claimed it before; nothing changed
    notEnabled,      // readiness is off, or was switched on for other rules
  };

  static constexpr int kVersion = 1;
  static constexpr std::string_view kKeyPrefix = "kovi.working.scheduled-ready.v1.";
  // Claims kept per record: one for every window a kovi can have. Past this
  // the oldest claims are dropped; their windows have long ended.
  static constexpr std::size_t kMaximumClaims = kWorkingMaximumWindows;

  explicit WorkingScheduledReadyStore(std::shared_ptr<KeyValueStore> store) : store_(std::move(store)) {}

  static std::string key(std::string_view ownerID, std::string_view roomID);

  // The record of `ownerID` in `roomID`, absent when none was saved.
  std::expected<std::optional<Record>, WorkingScheduledStoreError> record(std::string_view ownerID,
                                                                          std::string_view roomID) const;

  // Switches readiness on or off for the rules `rulesHash`. Switching on for
  // other rules than before forgets the earlier claims: they were made under
  // rules nobody consented to any more.
  std::expected<Record, WorkingScheduledStoreError> setEnabled(std::string_view ownerID, std::string_view roomID,
                                                               std::string_view rulesHash, bool enabled);

  // Claims `windowID` at `at` under the rules `rulesHash`.
  std::expected<ClaimOutcome, WorkingScheduledStoreError> claim(std::string_view ownerID, std::string_view roomID,
                                                                std::string_view rulesHash, std::string_view windowID,
                                                                UnixMillis at);

  std::expected<void, WorkingScheduledStoreError> remove(std::string_view ownerID, std::string_view roomID);

 private:
  // Reads the record of `ownerID` in `roomID` (a fresh, switched-off one when
  // none is saved), lets `change` edit it and writes it back, all inside one
  // update of the domain.
  std::expected<Record, WorkingScheduledStoreError> modify(std::string_view ownerID, std::string_view roomID,
                                                           const std::function<void(Record&)>& change);

  std::shared_ptr<KeyValueStore> store_;
  mutable std::mutex mutex_;
};

template <>
struct JsonRecordFields<WorkingScheduledReadyStore::Record> : StrictJsonRecord {
  using R = WorkingScheduledReadyStore::Record;
  static constexpr auto fields =
      std::tuple{field("version", &R::version),   field("ownerID", &R::ownerID), field("roomID", &R::roomID),
                 field("rulesHash", &R::rulesHash), field("enabled", &R::enabled), field("claims", &R::claims),
                 field("latestClaimAt", &R::latestClaimAt)};
};

}  // namespace kovi
