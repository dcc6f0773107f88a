#include "KoviKit/working/WorkingProtectionWindow.h"

#include <algorithm>

#include "KoviKit/working/WorkingRuleLimits.h"
#include "KoviKit/working/WorkingSessionEngine.h"

namespace kovi {
namespace {

bool isLowercaseSha256Hex(const std::string& text) {
  return text.size() == 64 &&
         std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

}  // namespace

std::expected<void, WorkingProtectionWindow::InvalidWindow> WorkingProtectionWindow::validate() const {
  const auto refuse = [](const char* reason) { return std::unexpected(InvalidWindow{reason}); };
  if (generation < 1) return refuse("generation must be at least 1");
  if (!WorkingSessionEngine::isValidIdentifier(ownerID)) return refuse("invalid owner identifier");
  if (!WorkingSessionEngine::isValidIdentifier(sessionID)) return refuse("invalid session identifier");
  if (!isLowercaseSha256Hex(rulesHash)) return refuse("rules hash is not a SHA-256 hex digest");
  if (startsAt < 0 || startsAt >= endsAt || endsAt > kWorkingLatestInstant) return refuse("window does not run forward");
  // Both ends are within range here, so the difference cannot overflow.
  if (endsAt - startsAt > kWorkingLongestKoviMillis) return refuse("window longer than 366 days");
  return {};
}

}  // namespace kovi
