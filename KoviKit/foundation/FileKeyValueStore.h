#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "KoviKit/foundation/ApplicationSupport.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/KeyValueStore.h"

namespace kovi {

// A preferences domain kept as one JSON document,
// `<directory>/Kovi/Preferences/v1/<domain>.json`:
//
//   {"version": 1, "values": {"purrl.cat.name": "Tarçın", …}}
//
// Several processes may share it (the app writes, the agent and widgets
// read). Every change is a read-modify-write under an exclusive flock on the
// sibling `<domain>.json.lock`, and the new document replaces the old one by
// rename, so a reader never sees a torn file and needs no lock. The document
// read last is kept open (a FileSnapshot) and parsed again only when another
// process has replaced it.
//
// A document that does not decode reads as `corrupt`; the next change moves
// it aside to `<domain>.json.corrupt` (keeping the bytes for inspection) and
// starts the domain afresh. A document of a newer version is never changed.
class FileKeyValueStore final : public KeyValueStore {
 public:
  explicit FileKeyValueStore(std::string domain, std::filesystem::path directory = applicationSupportDirectory());

  std::expected<nlohmann::json, KeyValueStoreError> values() const override;
  std::expected<void, KeyValueStoreError> update(const std::function<void(nlohmann::json& values)>& change) override;

  const std::filesystem::path& documentPath() const { return documentPath_; }

 private:
  // The values as they are on disk now; the caller holds `mutex_`.
  std::expected<nlohmann::json, KeyValueStoreError> currentValues() const;

  std::filesystem::path documentPath_;
  std::filesystem::path lockPath_;
  mutable std::mutex mutex_;
  // The document as last read: its values stand while the snapshot is current.
  mutable std::optional<FileSnapshot> snapshot_;
  mutable nlohmann::json cachedValues_;
};

}  // namespace kovi
