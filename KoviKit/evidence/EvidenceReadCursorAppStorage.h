#pragma once

#include <string>

#include "KoviKit/evidence/EvidenceReadCursorStorage.h"
#include "KoviKit/foundation/KeyValueStore.h"

namespace kovi {

// Cursors as values of the app group's shared preferences: the `Record`
// under "kovi.evidence.readCursor.v1.<digest>", the `AcceptedRecord` under
// "kovi.evidence.acceptedDays.v1.<digest>", each as its JSON object. The
// store serialises changes; a domain that cannot be read fails every load
// with `storageUnavailable`.
class EvidenceReadCursorAppStorage final : public EvidenceReadCursorStorage {
 public:
  explicit EvidenceReadCursorAppStorage(KeyValueStore& defaults);

  static std::string recordKey(const EvidenceReadScope& scope);
  static std::string acceptedKey(const EvidenceReadScope& scope);

  std::expected<std::optional<Record>, EvidenceReadFailure> loadRecord(const EvidenceReadScope& scope) override;
  std::expected<void, EvidenceReadFailure> saveRecord(const Record& record) override;
  std::expected<std::optional<AcceptedRecord>, EvidenceReadFailure> loadAccepted(
      const EvidenceReadScope& scope) override;
  std::expected<void, EvidenceReadFailure> saveAccepted(const EvidenceReadScope& scope,
                                                        const AcceptedRecord& record) override;
  std::expected<void, EvidenceReadFailure> remove(const EvidenceReadScope& scope) override;

 private:
  std::expected<void, EvidenceReadFailure> store(const std::string& key,
                                                 const std::expected<std::string, EvidenceReadFailure>& text);

  KeyValueStore& defaults_;
};

}  // namespace kovi
