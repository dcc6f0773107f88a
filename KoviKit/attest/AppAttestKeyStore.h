#pragma once

#include <expected>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/attest/AppAttestDeviceKey.h"

namespace kovi {

// Where the device key of each account is kept. One request at a time.
class AppAttestKeyStore {
 public:
  virtual ~AppAttestKeyStore() = default;
  // The account's key, none when it has none; an error when the stored
  // record cannot be read (it is then left as it is).
  virtual std::expected<std::optional<AppAttestDeviceKey>, std::string> key(std::string_view accountId) = 0;
  virtual std::expected<void, std::string> store(std::string_view accountId, const AppAttestDeviceKey& key) = 0;
};

// Keys for the life of the process.
class AppAttestMemoryKeyStore final : public AppAttestKeyStore {
 public:
  std::expected<std::optional<AppAttestDeviceKey>, std::string> key(std::string_view accountId) override;
  std::expected<void, std::string> store(std::string_view accountId, const AppAttestDeviceKey& key) override;

 private:
  std::mutex mutex_;
  std::map<std::string, AppAttestDeviceKey, std::less<>> keys_;
};

// Keys as files `<dataDirectory>/Kovi/AttestedDeviceKeys/v1/<hash>.json`,
// named by the SHA-256 of the account so no account text reaches a path,
// written atomically with mode 0600.
class AppAttestFileKeyStore final : public AppAttestKeyStore {
 public:
  explicit AppAttestFileKeyStore(const std::filesystem::path& dataDirectory);

  std::expected<std::optional<AppAttestDeviceKey>, std::string> key(std::string_view accountId) override;
  std::expected<void, std::string> store(std::string_view accountId, const AppAttestDeviceKey& key) override;

  std::filesystem::path pathFor(std::string_view accountId) const;

 private:
  std::filesystem::path directory_;
  std::mutex mutex_;
};

}  // namespace kovi
