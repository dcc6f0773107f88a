// `kovi wallet passkey create`: a software passkey for approving wallet
// operations.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/foundation/Base64.h"
#include "tools/kovi/WalletTool.h"

namespace kovi::tool {

void addWalletPasskeyCommands(CLI::App& app) {
  CLI::App* passkey = walletGroup(app).add_subcommand("passkey", "The software passkeys that approve wallet operations");
  passkey->require_subcommand(1);
  auto settings = std::make_shared<WalletToolSettings>();
  CLI::App* create = passkey->add_subcommand(
      "create",
      "Make a P-256 passkey under DATA_DIR/Kovi/Passkeys/v1 (mode 0600) and print\n"
      "{\"credentialId\", \"publicKey\", \"userHandle\"}: the id and user handle base64url, the public\n"
      "key base64 DER SubjectPublicKeyInfo, what the service registers. The private key is\n"
      "never printed.");
  settings->addOptions(*create);
  create->callback([settings] {
    auto party = settings->relyingParty();
    if (!party) return refuseWalletInput(party.error());
    SoftwarePasskeyService passkeys(settings->dataPath(), *party);
    auto credential = passkeys.createCredential();
    if (!credential) {
      std::cerr << "kovi wallet: passkey not made: " << credential.error().detail << '\n';
      exitStatus() = 1;
      return;
    }
    nlohmann::ordered_json printed;
    printed["credentialId"] = credential->credentialId;
    printed["publicKey"] = base64Encode(credential->publicKeyDer);
    printed["userHandle"] = base64UrlEncode(credential->userHandle);
    std::cout << printed.dump(2) << '\n';
  });
}

}  // namespace kovi::tool
