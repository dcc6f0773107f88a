#include "KoviKit/working/WorkingScheduledReadyStore.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

using Record = WorkingScheduledReadyStore::Record;
using StoreError = WorkingScheduledStoreError;

void appendLengthPrefixed(std::string& text, std::string_view part) {
  std::uint64_t length = part.size();
  std::array<char, 8> prefix{};
  for (int index = 7; index >= 0; --index) {
    prefix[static_cast<std::size_t>(index)] = static_cast<char>(length & 0xff);
    length >>= 8;
  }
  text.append(prefix.data(), prefix.size());
  text.append(part);
}

StoreError fromStoreError(const KeyValueStoreError& error) {
  switch (error.kind) {
    case KeyValueStoreError::Kind::corrupt: return {StoreError::Kind::corrupt, error.message};
    case KeyValueStoreError::Kind::unwritable: return {StoreError::Kind::unwritable, error.message};
    case KeyValueStoreError::Kind::unreadable:
    case KeyValueStoreError::Kind::unsupported: break;
  }
  return {StoreError::Kind::unreadable, error.message};
}

// The record under `key`, absent when there is none; a value that is not a
// record of this version is corrupt and names the key and where it failed.
std::expected<std::optional<Record>, StoreError> decodeStored(const nlohmann::json& values, const std::string& key) {
  const auto found = values.find(key);
  if (found == values.end()) return std::optional<Record>{};
  auto record = JsonView(*found, key).as<Record>();
  if (!record) return std::unexpected(StoreError{StoreError::Kind::corrupt, record.error().message()});
  if (record->version != WorkingScheduledReadyStore::kVersion) {
    return std::unexpected(
        StoreError{StoreError::Kind::corrupt, key + ".version: unsupported version " + std::to_string(record->version)});
  }
  return std::optional<Record>(std::move(*record));
}

// Drops the oldest claims beyond the bound, keeping the newest ones.
void boundClaims(Record& record) {
  while (record.claims.size() > WorkingScheduledReadyStore::kMaximumClaims) {
    const auto oldest = std::ranges::min_element(record.claims, {}, [](const auto& claim) { return claim.second; });
    record.claims.erase(oldest);
  }
}

}  // namespace

std::string WorkingScheduledReadyStore::key(std::string_view ownerID, std::string_view roomID) {
  std::string identity;
  appendLengthPrefixed(identity, ownerID);
  appendLengthPrefixed(identity, roomID);
  return std::string(kKeyPrefix) + sha256Hex(identity);
}

std::expected<std::optional<Record>, StoreError> WorkingScheduledReadyStore::record(std::string_view ownerID,
                                                                                    std::string_view roomID) const {
  std::lock_guard lock(mutex_);
  const auto values = store_->values();
  if (!values) return std::unexpected(fromStoreError(values.error()));
  return decodeStored(*values, key(ownerID, roomID));
}

std::expected<Record, StoreError> WorkingScheduledReadyStore::modify(std::string_view ownerID,
                                                                     std::string_view roomID,
                                                                     const std::function<void(Record&)>& change) {
  if (ownerID.empty() || roomID.empty()) {
    return std::unexpected(StoreError{StoreError::Kind::invalidKey, "an owner and a room are required"});
  }
  std::lock_guard lock(mutex_);
  const std::string recordKey = key(ownerID, roomID);
  std::expected<Record, StoreError> outcome = std::unexpected(StoreError{StoreError::Kind::unreadable, ""});
  const auto updated = store_->update([&](nlohmann::json& values) {
    auto stored = decodeStored(values, recordKey);
    if (!stored) {
      // A corrupt record stays as it is for inspection; nothing is written.
      outcome = std::unexpected(stored.error());
      return;
    }
    const Record fresh{kVersion, std::string(ownerID), std::string(roomID), {}, false, {}, 0};
    Record record = stored->value_or(fresh);
    change(record);
    // A change that does nothing writes nothing, and creates no record.
    if (record != stored->value_or(fresh)) values[recordKey] = encodeRecord(record);
    outcome = std::move(record);
  });
  if (!updated) return std::unexpected(fromStoreError(updated.error()));
  return outcome;
}

std::expected<Record, StoreError> WorkingScheduledReadyStore::setEnabled(std::string_view ownerID,
                                                                         std::string_view roomID,
                                                                         std::string_view rulesHash, bool enabled) {
  return modify(ownerID, roomID, [&](Record& record) {
    if (enabled && record.rulesHash != rulesHash) {
      record.claims.clear();
      record.latestClaimAt = 0;
      record.rulesHash = std::string(rulesHash);
    }
    record.enabled = enabled;
  });
}

std::expected<WorkingScheduledReadyStore::ClaimOutcome, StoreError> WorkingScheduledReadyStore::claim(
    std::string_view ownerID, std::string_view roomID, std::string_view rulesHash, std::string_view windowID,
    UnixMillis at) {
  ClaimOutcome outcome = ClaimOutcome::notEnabled;
  auto saved = modify(ownerID, roomID, [&](Record& record) {
    if (!record.enabled || record.rulesHash != rulesHash) return;
    if (!record.claims.emplace(std::string(windowID), at).second) {
      outcome = ClaimOutcome::alreadyClaimed;
      return;
    }
    outcome = ClaimOutcome::claimed;
    record.latestClaimAt = std::max(record.latestClaimAt, at);
    boundClaims(record);
  });
  if (!saved) return std::unexpected(saved.error());
  return outcome;
}

std::expected<void, StoreError> WorkingScheduledReadyStore::remove(std::string_view ownerID, std::string_view roomID) {
  std::lock_guard lock(mutex_);
  const auto removed = store_->removeValues({key(ownerID, roomID)});
  if (!removed) return std::unexpected(fromStoreError(removed.error()));
  return {};
}

}  // namespace kovi
