#include "KoviKit/evidence/HealthShareConsentStore.h"

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {

HealthShareConsentStore::HealthShareConsentStore(std::filesystem::path file) : file_(std::move(file)) { load(); }

std::filesystem::path HealthShareConsentStore::defaultFile(const std::filesystem::path& dataDirectory) {
  return dataDirectory / "Kovi" / "HealthShareConsent" / "v1" / "consent.json";
}

void HealthShareConsentStore::load() {
  auto text = readFileLimited(file_, kDocumentLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::missing) return;
    loadFailed_ = true;
    loadError_ = file_.string() + ": " +
                 (text.error().failure == FileReadFailure::tooLarge ? "larger than " + std::to_string(kDocumentLimit) +
                                                                          " bytes"
                                                                    : text.error().detail);
    return;
  }
  const auto refuse = [this](const DecodeError& error) {
    unreadable_ = true;
    loadError_ = file_.string() + ": " + error.message();
  };
  auto document = parseJson(*text);
  if (!document) return refuse(document.error());
  const JsonView root(*document);
  if (root.json().is_object() && !root.contains("version") && root.contains("requestedAccess")) {
    auto legacy = root.as<HealthShareLegacyConsent>();
    if (!legacy) return refuse(legacy.error());
    legacy_ = HealthShareConsent{legacy->requestedAccess, legacy->autoShare.value_or(false)};
    return;
  }
  auto current = root.as<HealthShareConsentDocument>();
  if (!current) return refuse(current.error());
  if (current->version != kVersion) {
    return refuse(DecodeError{"version", "version " + std::to_string(current->version) + " is not supported"});
  }
  accounts_ = std::move(current->accounts);
}

bool HealthShareConsentStore::loadFailed() const {
  std::lock_guard lock(mutex_);
  return loadFailed_;
}

bool HealthShareConsentStore::unreadable() const {
  std::lock_guard lock(mutex_);
  return unreadable_;
}

std::optional<std::string> HealthShareConsentStore::loadError() const {
  std::lock_guard lock(mutex_);
  return loadError_;
}

std::optional<HealthShareConsent> HealthShareConsentStore::legacy() const {
  std::lock_guard lock(mutex_);
  return legacy_;
}

HealthShareConsent HealthShareConsentStore::consent(const std::optional<std::string>& accountID) const {
  std::lock_guard lock(mutex_);
  return consentLocked(accountID);
}

HealthShareConsent HealthShareConsentStore::consentLocked(const std::optional<std::string>& accountID) const {
  if (!accountID) return signedOut_;
  if (const auto found = accounts_.find(*accountID); found != accounts_.end()) return found->second;
  return legacy_.value_or(HealthShareConsent{});
}

std::expected<void, HealthShareConsentError> HealthShareConsentStore::setRequestedAccess(
    const std::optional<std::string>& accountID, bool requestedAccess) {
  return change(accountID, &HealthShareConsent::requestedAccess, requestedAccess);
}

std::expected<void, HealthShareConsentError> HealthShareConsentStore::setAutoShare(
    const std::optional<std::string>& accountID, bool autoShare) {
  return change(accountID, &HealthShareConsent::autoShare, autoShare);
}

std::expected<void, HealthShareConsentError> HealthShareConsentStore::change(
    const std::optional<std::string>& accountID, bool HealthShareConsent::*member, bool value) {
  std::lock_guard lock(mutex_);
  if (!accountID) {
    signedOut_.*member = value;
    return {};
  }
  if (loadFailed_ || unreadable_) {
    return std::unexpected(HealthShareConsentError{HealthShareConsentError::Kind::notLoaded,
                                                   *loadError_ + "; not replaced by a change"});
  }
  auto accounts = accounts_;
  HealthShareConsent consent = consentLocked(accountID);
  consent.*member = value;
  accounts[*accountID] = consent;
  const HealthShareConsentDocument document{kVersion, accounts};
  if (auto written = writeFileAtomically(file_, encodeRecord(document).dump()); !written) {
    return std::unexpected(HealthShareConsentError{HealthShareConsentError::Kind::unwritable, written.error()});
  }
  accounts_ = std::move(accounts);
  legacy_.reset();
  return {};
}

std::expected<void, HealthShareConsentError> HealthShareConsentStore::discardStoredDocument() {
  std::lock_guard lock(mutex_);
  std::error_code error;
  std::filesystem::rename(file_, std::filesystem::path(file_.string() + ".corrupt"), error);
  if (error && error != std::errc::no_such_file_or_directory) {
    return std::unexpected(
        HealthShareConsentError{HealthShareConsentError::Kind::unwritable, file_.string() + ": " + error.message()});
  }
  loadFailed_ = unreadable_ = false;
  loadError_.reset();
  accounts_.clear();
  legacy_.reset();
  return {};
}

}  // namespace kovi
