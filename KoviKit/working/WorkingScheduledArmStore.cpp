#include "KoviKit/working/WorkingScheduledArmStore.h"

#include <algorithm>
#include <system_error>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingChainBinding.h"

namespace kovi {
namespace {

using StoreError = WorkingScheduledStoreError;

constexpr std::string_view kExtension = ".json";

StoreError invalidBinding(std::string_view chainBinding) {
  // The binding is an account's chain address and kovi id, not a secret,
  // but a hostile one may be long or binary: only its length is named.
  return {StoreError::Kind::invalidKey,
          "not a chain binding (" + std::to_string(chainBinding.size()) + " bytes): expected 0x<40 hex>:<kovi id>"};
}

// "0x…-42.json" back to "0x…:42"; absent for names the store never writes.
std::optional<std::string> bindingFromFileName(const std::string& name) {
  if (name.size() <= kExtension.size() || !name.ends_with(kExtension)) return std::nullopt;
  std::string binding = name.substr(0, name.size() - kExtension.size());
  const auto dash = binding.find('-');
  if (dash == std::string::npos) return std::nullopt;
  binding[dash] = ':';
  if (!isWorkingChainBinding(binding)) return std::nullopt;
  return binding;
}

}  // namespace

Decoded<WorkingScheduledArmRecord> decodeWorkingScheduledArmFile(std::string_view text, std::string_view chainBinding) {
  // Nobody hashes an arm file, but a repeated key would still let two readers
  // disagree on which session was armed; the strict parser refuses it.
  auto document = parseJson(text);
  if (!document) return std::unexpected(document.error());
  const JsonView root(*document);
  // A file of another version is named as such before its shape is judged.
  if (root.json().is_object() && root.contains("version")) {
    auto version = root.get<std::int64_t>("version");
    if (!version) return std::unexpected(version.error());
    if (*version != WorkingScheduledArmFile::kVersion) {
      return std::unexpected(DecodeError{"version", "unsupported version " + std::to_string(*version)});
    }
  }
  auto file = decodeRecord<WorkingScheduledArmFile>(root);
  if (!file) return std::unexpected(file.error());
  if (file->chainBinding != chainBinding) return std::unexpected(DecodeError{"chainBinding", "names another binding"});
  return std::move(file->record);
}

WorkingScheduledArmStore::WorkingScheduledArmStore(const std::filesystem::path& applicationSupport)
    : directory_(applicationSupport / "Kovi" / "ScheduledArms") {}

std::filesystem::path WorkingScheduledArmStore::fileFor(std::string_view chainBinding) const {
  std::string name(chainBinding);
  std::replace(name.begin(), name.end(), ':', '-');
  return directory_ / (name + std::string(kExtension));
}

std::expected<std::optional<WorkingScheduledArmRecord>, StoreError> WorkingScheduledArmStore::loadUnlocked(
    std::string_view chainBinding) const {
  if (!isWorkingChainBinding(chainBinding)) return std::unexpected(invalidBinding(chainBinding));
  const std::filesystem::path path = fileFor(chainBinding);
  const auto text = readFileLimited(path, kMaximumFileBytes);
  if (!text) {
    switch (text.error().failure) {
      case FileReadFailure::missing: return std::optional<WorkingScheduledArmRecord>{};
      case FileReadFailure::tooLarge:
        return std::unexpected(StoreError{StoreError::Kind::corrupt, path.string() + ": larger than " +
                                                                         std::to_string(kMaximumFileBytes) + " bytes"});
      case FileReadFailure::unreadable:
        return std::unexpected(StoreError{StoreError::Kind::unreadable, path.string() + ": " + text.error().detail});
    }
  }
  auto record = decodeWorkingScheduledArmFile(*text, chainBinding);
  if (!record) {
    return std::unexpected(StoreError{StoreError::Kind::corrupt, path.string() + ": " + record.error().message()});
  }
  return std::optional<WorkingScheduledArmRecord>(std::move(*record));
}

std::expected<std::optional<WorkingScheduledArmRecord>, StoreError> WorkingScheduledArmStore::load(
    std::string_view chainBinding) const {
  std::lock_guard lock(mutex_);
  return loadUnlocked(chainBinding);
}

std::expected<void, StoreError> WorkingScheduledArmStore::save(const WorkingScheduledArmRecord& record) {
  const auto chainBinding = record.chainBinding();
  if (!chainBinding) {
    return std::unexpected(StoreError{StoreError::Kind::invalidKey,
                                      "the record's room has no chain binding 0x<40 hex>:<kovi id>"});
  }
  std::lock_guard lock(mutex_);
  // A corrupt file is evidence of what went wrong; it is not replaced.
  if (auto existing = loadUnlocked(*chainBinding); !existing) return std::unexpected(existing.error());
  const auto text = encodeRecord(WorkingScheduledArmFile{WorkingScheduledArmFile::kVersion, *chainBinding, record}).dump();
  const auto written = writeFileAtomically(fileFor(*chainBinding), text);
  if (!written) return std::unexpected(StoreError{StoreError::Kind::unwritable, written.error()});
  return {};
}

std::expected<void, StoreError> WorkingScheduledArmStore::remove(std::string_view chainBinding) {
  std::lock_guard lock(mutex_);
  const auto existing = loadUnlocked(chainBinding);
  if (!existing) return std::unexpected(existing.error());
  if (!*existing) return {};
  std::error_code error;
  std::filesystem::remove(fileFor(chainBinding), error);
  if (error) {
    return std::unexpected(
        StoreError{StoreError::Kind::unwritable, fileFor(chainBinding).string() + ": " + error.message()});
  }
  return {};
}

std::expected<std::vector<WorkingScheduledArmStore::Entry>, StoreError> WorkingScheduledArmStore::list() const {
  std::lock_guard lock(mutex_);
  std::vector<Entry> entries;
  std::error_code error;
  std::filesystem::directory_iterator files(directory_, error);
  if (error) {
    if (error == std::errc::no_such_file_or_directory) return entries;
    return std::unexpected(StoreError{StoreError::Kind::unreadable, directory_.string() + ": " + error.message()});
  }
  // Stepping with an error code: a directory that fails mid-listing is
  // reported, not thrown.
  for (; files != std::filesystem::directory_iterator(); files.increment(error)) {
    const auto binding = bindingFromFileName(files->path().filename().string());
    if (!binding) continue;
    auto record = loadUnlocked(*binding);
    if (record && !*record) continue;  // removed since the directory was read
    using Loaded = std::expected<WorkingScheduledArmRecord, StoreError>;
    entries.push_back(Entry{*binding, record ? Loaded(std::move(**record)) : Loaded(std::unexpected(record.error()))});
  }
  if (error) return std::unexpected(StoreError{StoreError::Kind::unreadable, directory_.string() + ": " + error.message()});
  std::ranges::sort(entries, {}, &Entry::chainBinding);
  return entries;
}

}  // namespace kovi
