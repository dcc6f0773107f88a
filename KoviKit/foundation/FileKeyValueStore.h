#pragma once

#include <sys/types.h>

#include <ctime>
#include <filesystem>
#include <mutex>
#include <string>

#include "KoviKit/foundation/ApplicationSupport.h"
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
// rename, so a reader never sees a torn file and needs no lock. Each read
// checks the file's identity (inode, size, modification time) and parses it
// again only when another process has replaced it.
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
  // What identifies one version of the document on disk.
  struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec modified{};
    bool operator==(const FileIdentity& other) const;
  };

  // The values as they are on disk now; the caller holds `mutex_`.
  std::expected<nlohmann::json, KeyValueStoreError> currentValues() const;

  std::filesystem::path documentPath_;
  std::filesystem::path lockPath_;
  mutable std::mutex mutex_;
  mutable std::optional<FileIdentity> cachedIdentity_;
  mutable nlohmann::json cachedValues_;
};

}  // namespace kovi
