#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"

namespace kovi {

// The participant's own note about one session: what they meant to do and
// what they finished. It stays on the device.
struct WorkingSessionJournal {
  // The participant's verdict on the task.
  enum class Reflection { unset, completed, inProgress };

  static constexpr std::int64_t currentVersion = 1;

  std::int64_t version = currentVersion;
  std::string ownerID;
  std::string roomID;
  std::string sessionID;
  std::string label;
  std::string intention;
  std::string note;
  std::string completedOutput;
  Reflection reflection = Reflection::unset;
  UnixMillis updatedAt = 0;

  bool operator==(const WorkingSessionJournal&) const = default;
};

// Byte limits of a journal's texts (UTF-8 bytes, not characters): room for a
// long note, but a bounded preferences value.
inline constexpr std::size_t kWorkingJournalIdentifierLimit = 256;
inline constexpr std::size_t kWorkingJournalLabelLimit = 200;
inline constexpr std::size_t kWorkingJournalIntentionLimit = 2'000;
inline constexpr std::size_t kWorkingJournalNoteLimit = 8'000;
inline constexpr std::size_t kWorkingJournalCompletedOutputLimit = 4'000;

// Why a journal could not be kept or read.
struct WorkingSessionJournalError {
  enum class Kind {
    invalidJournal,  // the journal fails its checks; `reason` says which
    corrupt,         // the stored value does not decode or fails its checks
    storage,         // the preferences domain could not be read or written
  };
  Kind kind;
  std::string reason;
  bool operator==(const WorkingSessionJournalError&) const = default;
};

// The journal's checks: the current version, non-empty identifiers, every
// text within its byte limit and a time that is not negative. The failure is
// `invalidJournal` with an English reason ("note is longer than 8000 bytes").
std::expected<void, WorkingSessionJournalError> validateWorkingSessionJournal(const WorkingSessionJournal& journal);

template <>
struct EnumNames<WorkingSessionJournal::Reflection> {
  static constexpr std::array table{
      std::pair{WorkingSessionJournal::Reflection::unset, std::string_view("unset")},
      std::pair{WorkingSessionJournal::Reflection::completed, std::string_view("completed")},
      std::pair{WorkingSessionJournal::Reflection::inProgress, std::string_view("inProgress")},
  };
};

// The device writes and reads its journals itself: exactly these keys.
template <>
struct JsonRecordFields<WorkingSessionJournal> : StrictJsonRecord {
  using J = WorkingSessionJournal;
  static constexpr auto fields =
      std::tuple{field("version", &J::version),         field("ownerID", &J::ownerID),
                 field("roomID", &J::roomID),           field("sessionID", &J::sessionID),
                 field("label", &J::label),             field("intention", &J::intention),
                 field("note", &J::note),               field("completedOutput", &J::completedOutput),
                 field("reflection", &J::reflection),   field("updatedAt", &J::updatedAt)};
};

}  // namespace kovi
