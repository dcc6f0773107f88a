// `kovi wallet run`, `status` and `resubmit`: a member's wallet operation
// through its whole ceremony against the configured service, approved with
// a software passkey.
#include <algorithm>
#include <chrono>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "KoviKit/attest/SoftwarePasskeyService.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/wallet/V6WalletOperations.h"
#include "tools/kovi/NumberOptions.h"
#include "tools/kovi/ServiceOrigin.h"
#include "tools/kovi/WalletTool.h"

namespace kovi::tool {
namespace {

struct OperationOptions {
  WalletToolSettings settings;
  std::string account;
  std::optional<std::string> token;
  std::optional<std::string> passkey;
  std::int64_t pollIntervalMs = 3000;
  int pollLimit = 40;
};

struct RunOptions {
  std::string action;
  std::optional<std::string> reference;
  std::optional<std::string> draftFile;
  std::optional<std::string> destination;
};

// What the member reviewed: the intent without its digest and approval,
// as compact JSON, hashed.
std::string reviewDigestOf(const V6WalletIntent& intent) {
  nlohmann::ordered_json reviewed = encodeRecord(intent);
  reviewed.erase("reviewDigest");
  reviewed.erase("approved");
  return sha256Hex(reviewed.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

void printOutcome(const WalletCeremonyOutcome& outcome) {
  nlohmann::ordered_json printed;
  printed["phase"] = outcome.phase.name();
  printed["message"] = outcome.phase.message();
  printed["operation"] = outcome.operation ? encodeRecord(*outcome.operation) : nlohmann::ordered_json(nullptr);
  std::cout << printed.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

// Runs `act` over a member's operations set up from the options; prints its
// outcome. Exit 0 only when `succeeded` says so.
template <class Act>
void withOperations(const OperationOptions& options, Act act) {
  auto origin = configuredOrigin();
  if (!origin) return refuseWalletInput(origin.error());
  auto party = options.settings.relyingParty();
  if (!party) return refuseWalletInput(party.error());
  V6WalletOperationStore store(options.settings.dataPath());
  if (auto file = store.fileFor(options.account); !file) return refuseWalletInput("--account: " + file.error().detail);

  V6WalletAPI api(*origin);
  SoftwarePasskeyService passkeys(options.settings.dataPath(), *party);
  V6WalletOperationsOptions settings;
  settings.member = options.account;
  settings.token = options.token;
  settings.passkeyCredentialId = options.passkey;
  settings.ceremony.pollInterval = std::chrono::milliseconds(options.pollIntervalMs);
  settings.ceremony.pollLimit = options.pollLimit;
  settings.ceremony.phaseObserver = [](const WalletCeremonyPhase& phase, const std::optional<V6WalletOperation>&) {
    std::cerr << phase.name() << ": " << phase.title() << '\n';
  };
  V6WalletOperations operations(api, store, passkeys, std::move(settings));
  act(operations);
}

void exitFor(const WalletCeremonyOutcome& outcome, bool succeeded) {
  printOutcome(outcome);
  exitStatus() = succeeded ? 0 : 1;
}

void runOperation(const OperationOptions& options, const RunOptions& run) {
  std::optional<V6WalletDraft> draft;
  if (run.draftFile) {
    draft = decodeWalletFile<V6WalletDraft>(*run.draftFile);
    if (!draft) return;
    if (auto checked = checkV6WalletDraft(*draft); !checked) {
      return refuseWalletInput(*run.draftFile + ": " + checked.error().message());
    }
  }
  V6WalletIntent intent{run.action, run.reference, std::move(draft), {}, run.destination, true};
  intent.reviewDigest = reviewDigestOf(intent);
  withOperations(options, [&](V6WalletOperations& operations) {
    const auto outcome = operations.start(intent);
    exitFor(outcome, outcome.phase.kind == WalletCeremonyPhase::Kind::confirmed);
  });
}

void checkStatus(const OperationOptions& options) {
  withOperations(options, [](V6WalletOperations& operations) {
    std::cerr << walletCeremonyText::statusCheck << '\n';
    const auto outcome = operations.checkStatus();
    if (!outcome) {
      std::cout << R"({"phase": null, "message": "no wallet operation is kept for this account", "operation": null})"
                << '\n';
      exitStatus() = 1;
      return;
    }
    exitFor(*outcome, outcome->phase.kind != WalletCeremonyPhase::Kind::failed);
  });
}

void addOperationOptions(CLI::App& command, OperationOptions& options) {
  command.add_option("--account", options.account, "The member's account id; names the member's operation file")
      ->required();
  addTokenOption(&command, options.token);
  command.add_option("--passkey", options.passkey, "The credential id to approve with; default the only passkey");
  addIntegerOption(&command, "--poll-interval-ms", options.pollIntervalMs,
                   "Milliseconds between reads while observing (default 3000)", std::int64_t{1}, std::int64_t{600'000});
  addIntegerOption(&command, "--poll-limit", options.pollLimit,
                   "Reads while observing before giving the operation back open (default 40)", 1, 10'000);
  options.settings.addOptions(command);
}

CLI::Validator printable(std::size_t limit) {
  return CLI::Validator(
      [limit](const std::string& text) {
        const bool plain = std::ranges::all_of(text, [](char c) { return c > ' ' && c < 0x7f; });
        return plain && text.size() <= limit ? std::string()
                                             : "expected up to " + std::to_string(limit) + " printable ASCII characters";
      },
      "");
}

}  // namespace

void addWalletOperationCommands(CLI::App& app) {
  CLI::App& wallet = walletGroup(app);
  const std::string phases =
      "Each phase is a line on stderr (\"observing: Zincirde doğrulanıyor\"); the end is\n"
      "{\"phase\", \"message\", \"operation\"} on stdout.";

  auto options = std::make_shared<OperationOptions>();
  auto run = std::make_shared<RunOptions>();
  CLI::App* runCommand = wallet.add_subcommand(
      "run",
      "Run wallet ACTION (create, join, leave, claim, …) through its whole ceremony against\n"
      "$KOVI_SERVICE_ORIGIN: the service prepares the operation, the software passkey approves it,\n"
      "it is submitted and observed until the chain confirms, reverts or replaces it. While the\n"
      "account's last operation is still open, nothing new starts and the passkey is not asked.\n" +
          phases + " Exit 0 only when confirmed.");
  runCommand->add_option("ACTION", run->action, "The intent's kind")->required()->check(printable(40));
  runCommand->add_option("--reference", run->reference, "The kovi acted on")->check(printable(128));
  runCommand->add_option("--draft", run->draftFile, "A creator's draft (JSON), checked before anything is sent");
  runCommand->add_option("--destination", run->destination, "Where a rollover goes")->check(printable(128));
  addOperationOptions(*runCommand, *options);
  runCommand->callback([options, run] { runOperation(*options, *run); });

  auto statusOptions = std::make_shared<OperationOptions>();
  CLI::App* status = wallet.add_subcommand(
      "status",
      "Read the account's last operation from the service again. Never signs, submits or\n"
      "starts anything. " + phases + " Exit 1 when no operation is kept or the read failed.");
  addOperationOptions(*status, *statusOptions);
  status->callback([statusOptions] { checkStatus(*statusOptions); });

  auto resubmitOptions = std::make_shared<OperationOptions>();
  CLI::App* resubmit = wallet.add_subcommand(
      "resubmit",
      "Send the account's approved operation again under its own request id, after the answer\n"
      "to its submission was lost, and observe it; the service makes no second contribution.\n" +
          phases + " Exit 0 only when confirmed.");
  addOperationOptions(*resubmit, *resubmitOptions);
  auto cancelOptions = std::make_shared<OperationOptions>();
  CLI::App* cancel = wallet.add_subcommand(
      "cancel",
      "Ask the service to drop the account's prepared operation (one not approved), so a new\n"
      "action can start. Anything past preparation is refused unsent. " + phases +
          " Exit 0 when cancelled.");
  addOperationOptions(*cancel, *cancelOptions);
  cancel->callback([cancelOptions] {
    withOperations(*cancelOptions, [](V6WalletOperations& operations) {
      const auto outcome = operations.cancel();
      exitFor(outcome, outcome.phase.kind == WalletCeremonyPhase::Kind::cancelled);
    });
  });
  resubmit->callback([resubmitOptions] {
    withOperations(*resubmitOptions, [](V6WalletOperations& operations) {
      const auto outcome = operations.resubmit();
      exitFor(outcome, outcome.phase.kind == WalletCeremonyPhase::Kind::confirmed);
    });
  });
}

}  // namespace kovi::tool
