// `kovi wallet stake-check` and `kovi wallet request`: the forms the wallet
// service takes, checked and encoded without calling it.
#include <iostream>
#include <memory>
#include <string>

#include "KoviKit/wallet/V6WalletRequest.h"
#include "KoviKit/wallet/V6WalletStake.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"
#include "tools/kovi/WalletTool.h"

namespace kovi::tool {
namespace {

void runRequest(const std::string& path) {
  auto request = decodeWalletFile<V6WalletRequest>(path);
  if (!request) return;
  if (request->intent && request->intent->draft) {
    if (auto checked = checkV6WalletDraft(*request->intent->draft); !checked) {
      DecodeError error = checked.error();
      error.path = "intent.draft." + error.path;
      return refuseWalletInput(path + ": " + error.message());
    }
  }
  std::cout << encodeV6WalletRequest(*request) << '\n';
}

}  // namespace

void addWalletCommands(CLI::App& app) {
  CLI::App& wallet = walletGroup(app);

  auto amount = std::make_shared<std::string>();
  CLI::App* stake = wallet.add_subcommand(
      "stake-check",
      "Check AMOUNT as a kovi's stake: a decimal token amount below 1000000 with at most 18\n"
      "decimal places, without a leading zero or a dangling point. Prints \"ok\" (exit 0) or\n"
      "why it is refused (exit 1).");
  stake->add_option("AMOUNT", *amount, "The stake, such as 0.5")->required();
  stake->callback([amount] {
    if (const auto refusal = V6StakeForm::refusal(*amount)) {
      std::cout << *refusal << '\n';
      exitStatus() = 1;
      return;
    }
    std::cout << "ok\n";
  });

  auto file = std::make_shared<std::string>();
  CLI::App* request = wallet.add_subcommand(
      "request",
      "Read a wallet request from FILE (JSON; - for standard input) and print it as it is\n"
      "sent to /api/native/v6/wallet: compact, keys in the request's order, absent fields left\n"
      "out. A draft in the intent is checked (stake, rules of its domain). Exit 2 names the\n"
      "key path when the request does not decode.");
  request->add_option("FILE", *file, "The request, as JSON")->required();
  request->callback([file] { runRequest(*file); });
}

}  // namespace kovi::tool
