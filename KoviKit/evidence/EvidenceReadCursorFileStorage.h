#pragma once

#include <filesystem>
#include <mutex>

#include "KoviKit/evidence/EvidenceReadCursorStorage.h"
#include "KoviKit/foundation/ApplicationSupport.h"

namespace kovi {

// Cursors as files in `<data dir>/Kovi/EvidenceReadCursors/v1`, named after
// the scope's digest: `<digest>.json` holds the `Record`,
// `<digest>.accepted.json` the `AcceptedRecord`. Every write replaces its
// file atomically, so a crash leaves the old record or the new one. One
// request at a time.
class EvidenceReadCursorFileStorage final : public EvidenceReadCursorStorage {
 public:
  explicit EvidenceReadCursorFileStorage(const std::filesystem::path& dataDirectory = applicationSupportDirectory());

  const std::filesystem::path& directory() const { return directory_; }
  std::filesystem::path recordFile(const EvidenceReadScope& scope) const;
  std::filesystem::path acceptedFile(const EvidenceReadScope& scope) const;

  std::expected<std::optional<Record>, EvidenceReadFailure> loadRecord(const EvidenceReadScope& scope) override;
  std::expected<void, EvidenceReadFailure> saveRecord(const Record& record) override;
  std::expected<std::optional<AcceptedRecord>, EvidenceReadFailure> loadAccepted(
      const EvidenceReadScope& scope) override;
  std::expected<void, EvidenceReadFailure> saveAccepted(const EvidenceReadScope& scope,
                                                        const AcceptedRecord& record) override;
  std::expected<void, EvidenceReadFailure> remove(const EvidenceReadScope& scope) override;

 private:
  std::filesystem::path directory_;
  std::mutex mutex_;
};

}  // namespace kovi
