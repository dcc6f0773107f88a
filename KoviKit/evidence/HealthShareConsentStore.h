#pragma once

#include <expected>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "KoviKit/evidence/HealthShareConsent.h"
#include "KoviKit/foundation/ApplicationSupport.h"

namespace kovi {

// Why a consent change was not saved. The message names the file.
struct HealthShareConsentError {
  enum class Kind {
    // The stored document could not be read, or does not decode: what it
    // holds is unknown, so it is not replaced by a change.
    notLoaded,
    // The new document could not be written; the old one is untouched.
    unwritable,
  };
  Kind kind;
  std::string message;
  bool operator==(const HealthShareConsentError&) const = default;
};

// The per-account Health sharing consent of this device, kept in one
// document (`<data dir>/Kovi/HealthShareConsent/v1/consent.json`) that every
// change rewrites whole, atomically. While nobody is signed in, `signedOut`
// holds the consent in memory. A document in the earlier single-account form
// is read as `legacy`: the consent of every account that has none of its
// own, until the first change, which gives it to the account changed (the
// one person the earlier form belonged to) and writes the current form.
//
// A document that exists but does not decode sets `unreadable`; one that
// cannot be read at all sets `loadFailed`. Either way changes are refused
// until `discardStoredDocument` moves the file aside on purpose.
class HealthShareConsentStore {
 public:
  static constexpr int kVersion = 1;
  static constexpr std::size_t kDocumentLimit = 1024 * 1024;

  explicit HealthShareConsentStore(std::filesystem::path file);
  static std::filesystem::path defaultFile(const std::filesystem::path& dataDirectory = applicationSupportDirectory());

  bool loadFailed() const;
  bool unreadable() const;
  // Why loading failed, naming the file and the key path.
  std::optional<std::string> loadError() const;
  std::optional<HealthShareConsent> legacy() const;

  // The consent of `accountID`, or `signedOut` when nobody is signed in.
  HealthShareConsent consent(const std::optional<std::string>& accountID) const;

  std::expected<void, HealthShareConsentError> setRequestedAccess(const std::optional<std::string>& accountID,
                                                                  bool requestedAccess);
  std::expected<void, HealthShareConsentError> setAutoShare(const std::optional<std::string>& accountID,
                                                            bool autoShare);

  // Moves an unreadable document aside (to `<file>.corrupt`, kept for
  // inspection) and starts with no consents.
  std::expected<void, HealthShareConsentError> discardStoredDocument();

 private:
  void load();
  HealthShareConsent consentLocked(const std::optional<std::string>& accountID) const;
  std::expected<void, HealthShareConsentError> change(const std::optional<std::string>& accountID,
                                                      bool HealthShareConsent::*member, bool value);

  std::filesystem::path file_;
  mutable std::mutex mutex_;
  bool loadFailed_ = false;
  bool unreadable_ = false;
  std::optional<std::string> loadError_;
  std::map<std::string, HealthShareConsent> accounts_;
  HealthShareConsent signedOut_;
  std::optional<HealthShareConsent> legacy_;
};

}  // namespace kovi
