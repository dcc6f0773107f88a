#include "tools/kovi/WalletTool.h"

#include "KoviKit/foundation/ApplicationSupport.h"
#include "tools/kovi/ServiceOrigin.h"

namespace kovi::tool {
namespace {

// "https://kovi.example:8443" → "kovi.example"; "http://[::1]:80" → "::1".
std::string hostOf(const std::string& origin) {
  std::string rest = origin.substr(origin.find("://") + 3);
  if (rest.starts_with('[')) return rest.substr(1, rest.find(']') - 1);
  return rest.substr(0, rest.find(':'));
}

}  // namespace

void WalletToolSettings::addOptions(CLI::App& command) {
  command.add_option("--data-dir", dataDirectory,
                     "Where Kovi keeps its files (the Application Support equivalent); default $XDG_DATA_HOME");
  command.add_option("--rp-id", relyingPartyId, "The passkeys' relying-party id; default the service origin's host")
      ->envname("KOVI_PASSKEY_RP_ID");
  command.add_option("--passkey-origin", passkeyOrigin, "The origin written into assertions; default the service origin")
      ->envname("KOVI_PASSKEY_ORIGIN");
}

std::expected<PasskeyRelyingParty, std::string> WalletToolSettings::relyingParty() const {
  PasskeyRelyingParty party{relyingPartyId, passkeyOrigin};
  if (party.id.empty() || party.origin.empty()) {
    auto service = configuredOrigin();
    if (!service) return std::unexpected("no --rp-id and --passkey-origin, and " + service.error());
    if (party.id.empty()) party.id = hostOf(service->url());
    if (party.origin.empty()) party.origin = service->url();
  }
  return party;
}

std::filesystem::path WalletToolSettings::dataPath() const {
  return dataDirectory.empty() ? applicationSupportDirectory() : std::filesystem::path(dataDirectory);
}

}  // namespace kovi::tool
