#pragma once

#include <CLI/CLI.hpp>
#include <expected>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/wallet/V6WalletJson.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

namespace kovi::tool {

// The `wallet` command group, shared by the files that add its commands.
inline CLI::App& walletGroup(CLI::App& app) {
  return commandGroup(app, "wallet", "Wallet operations: stakes, requests, passkeys and the operation ceremony");
}

// Reports a problem with the command's input and ends it with status 2.
inline void refuseWalletInput(const std::string& reason) {
  std::cerr << "kovi wallet: " << reason << '\n';
  exitStatus() = 2;
}

// A wallet document from FILE, decoded as strictly as the service's answers
// (repeated keys refused); none after reporting why.
template <class T>
std::optional<T> decodeWalletFile(const std::string& path) {
  const auto text = readInput(path);
  if (!text) {
    refuseWalletInput(text.error());
    return std::nullopt;
  }
  auto decoded = decodeJsonText<T>(*text);
  if (!decoded) {
    refuseWalletInput(path + ": " + decoded.error().message());
    return std::nullopt;
  }
  return std::move(*decoded);
}

}  // namespace kovi::tool

namespace kovi::tool {

// Where `kovi wallet` keeps its files and which relying party its passkeys
// serve. Without --rp-id and --passkey-origin the service's own origin is
// the relying party: its host is the id, the origin itself the origin.
struct WalletToolSettings {
  std::string dataDirectory;
  std::string relyingPartyId;
  std::string passkeyOrigin;

  // Adds --data-dir, --rp-id and --passkey-origin to `command`.
  void addOptions(CLI::App& command);
  // The relying party, or why it cannot be worked out.
  std::expected<PasskeyRelyingParty, std::string> relyingParty() const;
  std::filesystem::path dataPath() const;
};

}  // namespace kovi::tool
