#include "KoviKit/wallet/V6WalletOperationStore.h"

#include <algorithm>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletJson.h"

namespace kovi {
namespace v6_wallet_store {

// The file's document.
struct StoredOperation {
  std::int64_t version = 0;
  V6WalletOperation operation;
};

}  // namespace v6_wallet_store

template <>
struct JsonRecordFields<v6_wallet_store::StoredOperation> : StrictJsonRecord {
  static constexpr auto fields = std::tuple{
      field("version", &v6_wallet_store::StoredOperation::version),
      field("operation", &v6_wallet_store::StoredOperation::operation),
  };
};

namespace {

// Far above any real operation (a few KiB), far below what could hurt.
constexpr std::size_t kFileLimit = 256 * 1024;
constexpr std::size_t kMemberLimit = 128;

bool isMemberCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.';
}

}  // namespace

std::string V6WalletOperationStoreError::message() const {
  const std::string file = path.empty() ? std::string("wallet operation store") : path.string();
  switch (kind) {
    case Kind::invalidMember: return "wallet operation store: " + detail;
    case Kind::unreadable: return file + ": cannot be read: " + detail;
    case Kind::corrupt: return file + ": corrupt, kept as it is: " + detail;
    case Kind::unsupportedVersion: return file + ": written by a newer Kovi, kept as it is: " + detail;
    case Kind::writeFailed: return file + ": cannot be written: " + detail;
  }
  return file + ": " + detail;
}

V6WalletOperationStore::V6WalletOperationStore(std::filesystem::path dataDirectory)
    : folder_(std::move(dataDirectory) / "Kovi" / "WalletOperations" / "v1") {}

std::expected<std::filesystem::path, V6WalletOperationStoreError> V6WalletOperationStore::fileFor(
    std::string_view member) const {
  const bool named = !member.empty() && member.size() <= kMemberLimit && member.front() != '.' &&
                     std::ranges::all_of(member, isMemberCharacter);
  if (!named) {
    return std::unexpected(V6WalletOperationStoreError{
        V6WalletOperationStoreError::Kind::invalidMember, {},
        "a member id is 1 to 128 letters, digits, '-', '_' or '.', not starting with '.'"});
  }
  return folder_ / (std::string(member) + ".json");
}

std::expected<std::optional<V6WalletOperation>, V6WalletOperationStoreError> V6WalletOperationStore::read(
    const std::filesystem::path& path) const {
  using Kind = V6WalletOperationStoreError::Kind;
  auto bytes = readFileLimited(path, kFileLimit);
  if (!bytes) {
    switch (bytes.error().failure) {
      case FileReadFailure::missing: return std::optional<V6WalletOperation>{};
      case FileReadFailure::tooLarge:
        return std::unexpected(V6WalletOperationStoreError{Kind::corrupt, path, "larger than 256 KiB"});
      case FileReadFailure::unreadable:
        return std::unexpected(V6WalletOperationStoreError{Kind::unreadable, path, bytes.error().detail});
    }
  }
  auto document = parseJson(*bytes);
  if (!document) return std::unexpected(V6WalletOperationStoreError{Kind::corrupt, path, document.error().message()});
  // The version is looked at first, so a newer file is never called corrupt.
  const JsonView root(*document);
  if (root.json().is_object() && root.contains("version")) {
    auto version = root.get<std::int64_t>("version");
    if (version && *version != kVersion) {
      return std::unexpected(
          V6WalletOperationStoreError{Kind::unsupportedVersion, path, "version " + std::to_string(*version)});
    }
  }
  auto stored = root.as<v6_wallet_store::StoredOperation>();
  if (!stored) return std::unexpected(V6WalletOperationStoreError{Kind::corrupt, path, stored.error().message()});
  return std::optional<V6WalletOperation>(std::move(stored->operation));
}

std::expected<std::optional<V6WalletOperation>, V6WalletOperationStoreError> V6WalletOperationStore::load(
    std::string_view member) const {
  auto path = fileFor(member);
  if (!path) return std::unexpected(path.error());
  const std::lock_guard lock(mutex_);
  return read(*path);
}

std::expected<void, V6WalletOperationStoreError> V6WalletOperationStore::save(std::string_view member,
                                                                               const V6WalletOperation& operation) {
  auto path = fileFor(member);
  if (!path) return std::unexpected(path.error());
  const std::lock_guard lock(mutex_);
  // A file that cannot be read may hold an open operation someone must look
  // at; it is never replaced.
  if (auto existing = read(*path); !existing) return std::unexpected(existing.error());
  const v6_wallet_store::StoredOperation stored{kVersion, operation};
  const std::string text = encodeRecord(stored).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
  if (auto written = writeFileAtomically(*path, text + "\n"); !written) {
    return std::unexpected(
        V6WalletOperationStoreError{V6WalletOperationStoreError::Kind::writeFailed, *path, written.error()});
  }
  return {};
}

}  // namespace kovi
