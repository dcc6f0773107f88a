#include "KoviKit/attest/AppAttestKeyStore.h"

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Sha256.h"

namespace kovi {
namespace {

// A key record is a few hundred bytes plus one attestation object.
constexpr std::size_t kKeyRecordLimit = 64 * 1024;

}  // namespace

std::expected<std::optional<AppAttestDeviceKey>, std::string> AppAttestMemoryKeyStore::key(
    std::string_view accountId) {
  std::scoped_lock lock(mutex_);
  const auto found = keys_.find(accountId);
  if (found == keys_.end()) return std::optional<AppAttestDeviceKey>{};
  return std::optional<AppAttestDeviceKey>(found->second);
}

std::expected<void, std::string> AppAttestMemoryKeyStore::store(std::string_view accountId,
                                                                const AppAttestDeviceKey& key) {
  std::scoped_lock lock(mutex_);
  keys_.insert_or_assign(std::string(accountId), key);
  return {};
}

AppAttestFileKeyStore::AppAttestFileKeyStore(const std::filesystem::path& dataDirectory)
    : directory_(dataDirectory / "Kovi" / "AttestedDeviceKeys" / "v1") {}

std::filesystem::path AppAttestFileKeyStore::pathFor(std::string_view accountId) const {
  return directory_ / (sha256Hex(accountId) + ".json");
}

std::expected<std::optional<AppAttestDeviceKey>, std::string> AppAttestFileKeyStore::key(std::string_view accountId) {
  std::scoped_lock lock(mutex_);
  const auto path = pathFor(accountId);
  auto text = readFileLimited(path, kKeyRecordLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::missing) return std::optional<AppAttestDeviceKey>{};
    return std::unexpected("cannot read " + path.string() + ": " + text.error().detail);
  }
  auto key = decodeJsonText<AppAttestDeviceKey>(*text);
  if (!key) return std::unexpected(path.string() + " is corrupt: " + key.error().message());
  return std::optional<AppAttestDeviceKey>(std::move(*key));
}

std::expected<void, std::string> AppAttestFileKeyStore::store(std::string_view accountId,
                                                              const AppAttestDeviceKey& key) {
  std::scoped_lock lock(mutex_);
  const auto path = pathFor(accountId);
  // A record that does not decode may still be the only trace of a key the
  // service knows; it is reported, never replaced.
  if (auto existing = readFileLimited(path, kKeyRecordLimit); existing) {
    if (auto decoded = decodeJsonText<AppAttestDeviceKey>(*existing); !decoded) {
      return std::unexpected(path.string() + " is corrupt: " + decoded.error().message());
    }
  } else if (existing.error().failure != FileReadFailure::missing) {
    return std::unexpected("cannot read " + path.string() + ": " + existing.error().detail);
  }
  return writeFileAtomically(path, encodeRecord(key).dump(),
                             std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace kovi
