#include "KoviKit/working/WorkingSessionJournalStore.h"

#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

using Kind = WorkingSessionJournalError::Kind;

WorkingSessionJournalError storageError(const KeyValueStoreError& error) {
  return {Kind::storage, error.message};
}

void appendLengthPrefixed(std::string& identity, std::string_view part) {
  identity += std::to_string(part.size());
  identity += ':';
  identity += part;
}

}  // namespace

std::string WorkingSessionJournalStore::key(const WorkingSessionJournalIdentity& identity) {
  std::string entered;
  for (std::string_view part : {identity.ownerID, identity.roomID, identity.sessionID}) {
    appendLengthPrefixed(entered, part);
  }
  return std::string(keyPrefix) + sha256Hex(entered);
}

std::expected<std::optional<WorkingSessionJournal>, WorkingSessionJournalError> WorkingSessionJournalStore::load(
    const WorkingSessionJournalIdentity& identity) const {
  const auto values = preferences_.values();
  if (!values) return std::unexpected(storageError(values.error()));
  const std::string storageKey = key(identity);
  const auto found = values->find(storageKey);
  if (found == values->end()) return std::nullopt;
  const auto corrupt = [&](const std::string& reason) {
    return std::unexpected(WorkingSessionJournalError{Kind::corrupt, storageKey + ": " + reason});
  };
  if (!found->is_string()) return corrupt("not the text of a journal");
  auto journal = decodeJsonText<WorkingSessionJournal>(found->get_ref<const std::string&>());
  if (!journal) return corrupt(journal.error().message());
  if (auto valid = validateWorkingSessionJournal(*journal); !valid) return corrupt(valid.error().reason);
  if (journal->ownerID != identity.ownerID || journal->roomID != identity.roomID ||
      journal->sessionID != identity.sessionID) {
    return corrupt("the journal belongs to another session");
  }
  return std::optional(std::move(*journal));
}

std::expected<void, WorkingSessionJournalError> WorkingSessionJournalStore::save(const WorkingSessionJournal& journal) {
  if (auto valid = validateWorkingSessionJournal(journal); !valid) return valid;
  const std::string storageKey = key({journal.ownerID, journal.roomID, journal.sessionID});
  auto saved = preferences_.setValue(storageKey, encodeRecord(journal).dump());
  if (!saved) return std::unexpected(storageError(saved.error()));
  return {};
}

std::expected<void, WorkingSessionJournalError> WorkingSessionJournalStore::remove(
    const WorkingSessionJournalIdentity& identity) {
  auto removed = preferences_.removeValues({key(identity)});
  if (!removed) return std::unexpected(storageError(removed.error()));
  return {};
}

}  // namespace kovi
