#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/ApplicationSupport.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingScheduledArmRecord.h"
#include "KoviKit/working/WorkingScheduledStoreError.h"

namespace kovi {

// The Mac's armed scheduled starts: one file per chain binding under
// "Kovi/ScheduledArms", named after the binding with its colon as a dash
// ("0x…-42.json"), holding a WorkingScheduledArmFile
//
//   {"version": 1, "chainBinding": "0x…:42", "record": {"room", "session", "closed"}}
//
// Every write replaces the file atomically (temporary file, flush, rename), so
// a crash or a kill leaves the previous record or the new one. A file that
// does not decode as that record, names another binding or carries another
// version is reported as corrupt and never overwritten or removed by the store.
class WorkingScheduledArmStore {
 public:
  static constexpr std::size_t kMaximumFileBytes = 4 * 1024 * 1024;

  // One file found by `list`: its binding and its record, or why it is unusable.
  struct Entry {
    std::string chainBinding;
    std::expected<WorkingScheduledArmRecord, WorkingScheduledStoreError> record;
  };

  explicit WorkingScheduledArmStore(const std::filesystem::path& applicationSupport = applicationSupportDirectory());

  const std::filesystem::path& directory() const { return directory_; }
  std::filesystem::path fileFor(std::string_view chainBinding) const;

  // The record saved for `chainBinding`, absent when there is none.
  std::expected<std::optional<WorkingScheduledArmRecord>, WorkingScheduledStoreError> load(
      std::string_view chainBinding) const;
  // Saves `record` under its room's chain binding (`invalidKey` when it has none).
  std::expected<void, WorkingScheduledStoreError> save(const WorkingScheduledArmRecord& record);
  // Removes a record that decodes; a corrupt file is left in place.
  std::expected<void, WorkingScheduledStoreError> remove(std::string_view chainBinding);
  // Every record file in the directory, by binding; other files (temporary
  // files of a write in progress, anything not named like a binding) are
  // not the store's and are skipped.
  std::expected<std::vector<Entry>, WorkingScheduledStoreError> list() const;

 private:
  std::expected<std::optional<WorkingScheduledArmRecord>, WorkingScheduledStoreError> loadUnlocked(
      std::string_view chainBinding) const;

  std::filesystem::path directory_;
  mutable std::mutex mutex_;
};

// The record inside the text of an arm file that should hold `chainBinding`;
// the error says where and why it does not.
Decoded<WorkingScheduledArmRecord> decodeWorkingScheduledArmFile(std::string_view text, std::string_view chainBinding);

}  // namespace kovi
