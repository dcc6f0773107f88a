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
  struct Text {
    std::string_view name;
    const std::string* value;
    std::size_t limit;
    bool identifies;  // identifiers must not be empty
  };
  const Text texts[] = {
      {"ownerID", &journal.ownerID, kWorkingJournalIdentifierLimit, true},
      {"roomID", &journal.roomID, kWorkingJournalIdentifierLimit, true},
      {"sessionID", &journal.sessionID, kWorkingJournalIdentifierLimit, true},
      {"label", &journal.label, kWorkingJournalLabelLimit, false},
      {"intention", &journal.intention, kWorkingJournalIntentionLimit, false},
      {"note", &journal.note, kWorkingJournalNoteLimit, false},
      {"completedOutput", &journal.completedOutput, kWorkingJournalCompletedOutputLimit, false},
  };
  for (const Text& text : texts) {
    if (text.identifies && text.value->empty()) return invalid(std::string(text.name) + " is empty");
    if (text.value->size() > text.limit) {
      return invalid(std::string(text.name) + " is longer than " + std::to_string(text.limit) + " bytes");
    }
  }
  if (journal.updatedAt < 0) return invalid("updatedAt is before 1970");
  return {};
}

}  // namespace kovi
