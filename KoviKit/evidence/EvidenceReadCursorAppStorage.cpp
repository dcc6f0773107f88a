#include "KoviKit/evidence/EvidenceReadCursorAppStorage.h"

namespace kovi {
namespace {

EvidenceReadFailure unavailable(const KeyValueStoreError& error) {
  return {EvidenceReadError::storageUnavailable, error.message};
}

// The value under `key` decoded by `decode`, nullopt when there is none.
template <class Decode>
auto load(const KeyValueStore& defaults, const std::string& key, Decode decode)
    -> std::expected<std::optional<typename decltype(decode(nlohmann::json(), key))::value_type>, EvidenceReadFailure> {
  auto values = defaults.values();
  if (!values) return std::unexpected(unavailable(values.error()));
  const auto found = values->find(key);
  if (found == values->end()) return std::nullopt;
  auto record = decode(*found, key);
  if (!record) return std::unexpected(record.error());
  return std::move(*record);
}

}  // namespace

EvidenceReadCursorAppStorage::EvidenceReadCursorAppStorage(KeyValueStore& defaults) : defaults_(defaults) {}

std::string EvidenceReadCursorAppStorage::recordKey(const EvidenceReadScope& scope) {
  return "kovi.evidence.readCursor.v1." + scope.digest();
}

std::string EvidenceReadCursorAppStorage::acceptedKey(const EvidenceReadScope& scope) {
  return "kovi.evidence.acceptedDays.v1." + scope.digest();
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorAppStorage::store(
    const std::string& key, const std::expected<std::string, EvidenceReadFailure>& text) {
  if (!text) return std::unexpected(text.error());
  if (auto saved = defaults_.setValue(key, nlohmann::json::parse(*text)); !saved) {
    return std::unexpected(unavailable(saved.error()));
  }
  return {};
}

std::expected<std::optional<EvidenceReadCursorStorage::Record>, EvidenceReadFailure>
EvidenceReadCursorAppStorage::loadRecord(const EvidenceReadScope& scope) {
  return load(defaults_, recordKey(scope), [&](const nlohmann::json& value, const std::string& key) {
    return decodeStoredRecord(value, scope, key);
  });
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorAppStorage::saveRecord(const Record& record) {
  return store(recordKey(record.scope), encodeForStorage(record));
}

std::expected<std::optional<EvidenceReadCursorStorage::AcceptedRecord>, EvidenceReadFailure>
EvidenceReadCursorAppStorage::loadAccepted(const EvidenceReadScope& scope) {
  return load(defaults_, acceptedKey(scope), [&](const nlohmann::json& value, const std::string& key) {
    return decodeStoredAccepted(value, scope, key);
  });
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorAppStorage::saveAccepted(const EvidenceReadScope& scope,
                                                                                     const AcceptedRecord& record) {
  return store(acceptedKey(scope), encodeForStorage(scope, record));
}

std::expected<void, EvidenceReadFailure> EvidenceReadCursorAppStorage::remove(const EvidenceReadScope& scope) {
  if (auto removed = defaults_.removeValues({recordKey(scope), acceptedKey(scope)}); !removed) {
    return std::unexpected(unavailable(removed.error()));
  }
  return {};
}

}  // namespace kovi
