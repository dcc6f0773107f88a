// `kovi working fence fire` and `kovi working lease check`: fire a scheduled
// start fence kept as JSON, and check an offline lease the way the Mac does
// before it counts offline.
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "KoviKit/working/WorkingOfflineLeaseVerification.h"
#include "KoviKit/working/WorkingScheduledStartFence.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

namespace kovi::tool {
namespace {

// The document in `path` decoded by `decode`, or nothing after saying which
// file failed where.
template <class Decode>
auto readDocument(const std::string& path, Decode decode) -> std::optional<typename decltype(decode(""))::value_type> {
  const auto text = readInput(path);
  if (!text) {
    refuseInput(text.error());
    return std::nullopt;
  }
  auto decoded = decode(*text);
  if (!decoded) {
    refuseInput(path + ": " + decoded.error().message());
    return std::nullopt;
  }
  return std::move(*decoded);
}

void addFenceFireCommand(CLI::App& working) {
  struct Options {
    std::string file;
    UnixMillis now = 0;
    std::int64_t ownerEpoch = 0;
    std::int64_t refreshEpoch = 0;
  };
  auto options = std::make_shared<Options>();
  CLI::App* fence = working.add_subcommand("fence", "Exercise the scheduled-start fence");
  fence->require_subcommand(1);
  CLI::App* command = fence->add_subcommand(
      "fire",
      "Fire the scheduled start fence in FILE (a WorkingScheduledStartFence as JSON) at --now for a\n"
      "caller holding --owner-epoch and --refresh-epoch. Checks, in order: the fence is armed\n"
      "(notArmed, or alreadyFired once fired), the owner epoch (ownerMismatch), the refresh epoch\n"
      "(refreshMismatch), not before startsAt (early), not after lateDeadline (expired); both\n"
      "bounds are inclusive. Prints {\"result\":\"published\",\"preparedAt\":MS,\"fence\":{…fired}}\n"
      "(exit 0) or {\"result\":\"failed\",\"reason\":\"early\",\"fence\":{…unchanged}} (exit 1).\n"
      "FILE itself is not changed.");
  command->add_option("FILE", options->file, "The fence as JSON, or - for standard input")->required();
  command->add_option("--now", options->now, "The current time, Unix milliseconds")->required();
  command->add_option("--owner-epoch", options->ownerEpoch, "The caller's owner epoch")->required();
  command->add_option("--refresh-epoch", options->refreshEpoch, "The caller's plan refresh epoch")->required();
  command->callback([options] {
    auto fence = readDocument(options->file, decodeJsonText<WorkingScheduledStartFence>);
    if (!fence) return;
    const auto fired = fence->fire(options->now, options->ownerEpoch, options->refreshEpoch);
    nlohmann::ordered_json output = nlohmann::ordered_json::object();
    if (fired) {
      output["result"] = "published";
      output["preparedAt"] = fired->preparedAt;
    } else {
      output["result"] = "failed";
      output["reason"] = enumName(fired.error());
    }
    output["fence"] = encodeRecord(*fence);
    std::cout << output.dump(2) << '\n';
    exitStatus() = fired ? 0 : 1;
  });
}

void addLeaseCheckCommand(CLI::App& working) {
  struct Options {
    std::string envelope;
    std::string binding;
    std::string serverKeys;
    UnixMillis now = 0;
  };
  auto options = std::make_shared<Options>();
  CLI::App* lease = working.add_subcommand("lease", "Check offline leases");
  lease->require_subcommand(1);
  CLI::App* command = lease->add_subcommand(
      "check",
      "Check the offline lease envelope in ENVELOPE ({\"lease\":{…},\"signature\":\"base64 DER\"}) as\n"
      "the Mac does before counting offline: strict decoding with no repeated key (invalidEnvelope,\n"
      "exit 2), a known serverKeyID whose key verifies the signature over\n"
      "{\"purpose\":\"kovi-working-offline-lease-v1\",\"lease\":{…}} (invalidSignature), every\n"
      "field of the --binding equal to the lease's (bindingMismatch, naming the field), and\n"
      "--now before workUntil (expired). Prints the lease (exit 0) or\n"
      "{\"error\":\"bindingMismatch\",\"field\":\"deviceID\"} (exit 1). --server-keys is a JSON\n"
      "object from key id to base64 DER SubjectPublicKeyInfo.");
  command->add_option("ENVELOPE", options->envelope, "The lease envelope as JSON, or - for standard input")
      ->required();
  command->add_option("--binding", options->binding, "The WorkingOfflineBinding this device expects, as JSON")
      ->required();
  command->add_option("--server-keys", options->serverKeys, "The trusted server keys, as JSON")->required();
  command->add_option("--now", options->now, "The current time, Unix milliseconds")->required();
  command->callback([options] {
    const int stdinUses = (options->envelope == "-") + (options->binding == "-") + (options->serverKeys == "-");
    if (stdinUses > 1) return refuseInput("only one input can be -");
    const auto binding = readDocument(options->binding, decodeJsonText<WorkingOfflineBinding>);
    if (!binding) return;
    const auto keys = readDocument(options->serverKeys, decodeWorkingOfflineServerKeys);
    if (!keys) return;
    const auto envelope = readInput(options->envelope);
    if (!envelope) return refuseInput(envelope.error());

    const auto lease = verifyWorkingOfflineEnvelope(*envelope, *keys, *binding, options->now);
    if (lease) {
      std::cout << encodeRecord(*lease).dump(2) << '\n';
      return;
    }
    const WorkingOfflineError& error = lease.error();
    nlohmann::ordered_json output = {{"error", enumName(error.kind)}};
    output[error.kind == WorkingOfflineError::Kind::bindingMismatch ? "field" : "reason"] = error.detail;
    std::cout << output.dump(2) << '\n';
    // An envelope that does not decode is undecodable input; the rest are refusals.
    exitStatus() = error.kind == WorkingOfflineError::Kind::invalidEnvelope ? 2 : 1;
  });
}

}  // namespace

void addWorkingFenceCommands(CLI::App& app) {
  CLI::App& working = commandGroup(app, "working", "Working sessions: scheduled starts, fences and offline leases");
  addFenceFireCommand(working);
  addLeaseCheckCommand(working);
}

}  // namespace kovi::tool
