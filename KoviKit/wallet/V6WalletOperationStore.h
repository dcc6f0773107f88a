#pragma once

#include <expected>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/wallet/V6WalletOperation.h"

namespace kovi {

// Why the operation store could not do what was asked. `message()` names
// the file and the reason; it never holds more of the file than its path.
struct V6WalletOperationStoreError {
  enum class Kind {
    invalidMember,       // the member id cannot name a file
    unreadable,          // the file exists but cannot be read
    corrupt,             // the file does not decode; it is kept as it is
    unsupportedVersion,  // written by a newer Kovi; it is kept as it is
    writeFailed,
  };

  Kind kind = Kind::corrupt;
  std::filesystem::path path;
  std::string detail;

  std::string message() const;
  bool operator==(const V6WalletOperationStoreError&) const = default;
};

// The last wallet operation of each member on this device, so that a new
// action is refused while one is open and a status check reads the same
// operation again. One file per member,
// <data dir>/Kovi/WalletOperations/v1/<member>.json, holding
// {"version": 1, "operation": {…}}, replaced atomically. A file that does not
// decode is reported and never overwritten: it may hold an open operation.
// Requests are served one at a time.
class V6WalletOperationStore {
 public:
  static constexpr int kVersion = 1;

  // `dataDirectory` is the Application Support equivalent.
  explicit V6WalletOperationStore(std::filesystem::path dataDirectory);

  // The member's operation, or none when the member has no file.
  std::expected<std::optional<V6WalletOperation>, V6WalletOperationStoreError> load(std::string_view member) const;
  std::expected<void, V6WalletOperationStoreError> save(std::string_view member, const V6WalletOperation& operation);

  // Where the member's file lives; an error for an id that cannot name a file.
  std::expected<std::filesystem::path, V6WalletOperationStoreError> fileFor(std::string_view member) const;

 private:
  std::expected<std::optional<V6WalletOperation>, V6WalletOperationStoreError> read(
      const std::filesystem::path& path) const;

  std::filesystem::path folder_;
  mutable std::mutex mutex_;
};

}  // namespace kovi
