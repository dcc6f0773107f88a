#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/KeyValueStore.h"
#include "KoviKit/working/WorkingSessionJournal.h"

namespace kovi {

// Which journal: the account, the working kovi room and the session.
struct WorkingSessionJournalIdentity {
  std::string_view ownerID;
  std::string_view roomID;
  std::string_view sessionID;
};

// Keeps one journal per session in the shared preferences domain, each under
// its own key and stored as the text of its JSON document. Reads and writes
// go through the domain's own lock, so the store can be shared.
class WorkingSessionJournalStore {
 public:
  static constexpr std::string_view keyPrefix = "kovi.working.journal.v1.";

  explicit WorkingSessionJournalStore(KeyValueStore& preferences) : preferences_(preferences) {}

  // "kovi.working.journal.v1." and the lowercase hex SHA-256 of owner, room
  // and session, each entered as its UTF-8 byte count in decimal, ":" and its
  // bytes ("2:ab1:c…"), so no two splits of the same characters share a key.
  static std::string key(const WorkingSessionJournalIdentity& identity);

  // The journal of `identity`, or none yet. A stored value that does not
  // decode, fails its checks or belongs to another identity is `corrupt`.
  std::expected<std::optional<WorkingSessionJournal>, WorkingSessionJournalError> load(
      const WorkingSessionJournalIdentity& identity) const;

  // Checks the journal, then stores it under its identity's key.
  std::expected<void, WorkingSessionJournalError> save(const WorkingSessionJournal& journal);

  std::expected<void, WorkingSessionJournalError> remove(const WorkingSessionJournalIdentity& identity);

 private:
  KeyValueStore& preferences_;
};

}  // namespace kovi
