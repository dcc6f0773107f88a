#include "KoviKit/working/WorkingSessionJournal.h"

namespace kovi {
namespace {

std::expected<void, WorkingSessionJournalError> invalid(std::string reason) {
  return std::unexpected(WorkingSessionJournalError{WorkingSessionJournalError::Kind::invalidJournal, std::move(reason)});
}

}  // namespace

std::expected<void, WorkingSessionJournalError> validateWorkingSessionJournal(const WorkingSessionJournal& journal) {
  if (journal.version != WorkingSessionJournal::currentVersion) {
    return invalid("version " + std::to_string(journal.version) + " is not " +
                   std::to_string(WorkingSessionJournal::currentVersion));
  }
  const std::pair<std::string_view, const std::string*> identifiers[] = {
      {"ownerID", &journal.ownerID}, {"roomID", &journal.roomID}, {"sessionID", &journal.sessionID}};
  for (const auto& [name, value] : identifiers) {
    if (value->empty()) return invalid(std::string(name) + " is empty");
  }
  const std::tuple<std::string_view, const std::string*, std::size_t> texts[] = {
      {"ownerID", &journal.ownerID, kWorkingJournalIdentifierLimit},
      {"roomID", &journal.roomID, kWorkingJournalIdentifierLimit},
      {"sessionID", &journal.sessionID, kWorkingJournalIdentifierLimit},
      {"label", &journal.label, kWorkingJournalLabelLimit},
      {"intention", &journal.intention, kWorkingJournalIntentionLimit},
      {"note", &journal.note, kWorkingJournalNoteLimit},
      {"completedOutput", &journal.completedOutput, kWorkingJournalCompletedOutputLimit},
  };
  for (const auto& [name, value, limit] : texts) {
    if (value->size() > limit) {
      return invalid(std::string(name) + " is longer than " + std::to_string(limit) + " bytes");
    }
  }
  if (journal.updatedAt < 0) return invalid("updatedAt is before 1970");
  return {};
}

}  // namespace kovi
