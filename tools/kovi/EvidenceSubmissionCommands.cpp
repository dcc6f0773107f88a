// `kovi evidence envelope|key|register|submit|upload|pending`: the signed side of
// walking evidence — the canonical envelope, the device key, its
// registration, submission against the service and the pending records.
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "KoviKit/attest/AppAttestKeyStore.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/evidence/HealthExportStore.h"
#include "KoviKit/evidence/HealthStepStatistics.h"
#include "KoviKit/evidence/V6DeviceKeyRegistrar.h"
#include "KoviKit/evidence/V6LiveHealthUploader.h"
#include "KoviKit/evidence/V6RequestId.h"
#include "KoviKit/evidence/V6WalkingEvidenceSubmitter.h"
#include "KoviKit/evidence/WalkingEvidenceBackoffStore.h"
#include "KoviKit/foundation/ApplicationSupport.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"
#include "tools/kovi/ServiceOrigin.h"
#include "tools/kovi/WalkingInput.h"

namespace kovi::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kRefused = 1;
constexpr int kUsageError = 2;
// The app identity the tool's software keys sign as, unless told otherwise.
constexpr const char* kDefaultAppIdentity = "app.kovi.cli";

void fail(int status, const std::string& reason) {
  std::cerr << "kovi evidence: " << reason << '\n';
  exitStatus() = status;
}

UnixMillis nowMillis() { return Date::now().unixMillis(); }

void printLine(const Json& json) { std::cout << json.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n'; }

// The options every command that touches keys or the service shares.
struct DeviceOptions {
  std::string dataDirectory;
  std::string appIdentity = kDefaultAppIdentity;
  std::optional<std::string> token;
  std::string account;

  std::filesystem::path dataPath() const {
    return dataDirectory.empty() ? applicationSupportDirectory() : std::filesystem::path(dataDirectory);
  }
};

void addDeviceOptions(CLI::App* command, DeviceOptions& options) {
  command->add_option("--data-dir", options.dataDirectory,
                      "Where the Kovi/… folders live (default: $XDG_DATA_HOME, else ~/.local/share)");
  command->add_option("--app-identity", options.appIdentity, "The app identity the device key signs as")
      ->capture_default_str();
}

void addServiceOptions(CLI::App* command, DeviceOptions& options) {
  addDeviceOptions(command, options);
  addTokenOption(command, options.token);
  command->add_option("--account", options.account, "The account (financial actor) the key and evidence belong to")
      ->required();
}

// A refusal, with the earliest time the next attempt is worth making: a
// transient failure counts into the account's stored backoff; the other
// classes wait their fixed time from now without being stored.
Json errorJson(const V6EvidenceSubmissionError& error, WalkingEvidenceBackoffStore* backoffs = nullptr,
               const std::string& account = {}) {
  const UnixMillis now = nowMillis();
  auto backoff = WalkingEvidenceBackoff{}.afterFailure(error.failure, now);
  if (backoffs != nullptr) {
    if (auto stored = backoffs->recordFailure(account, error.failure, now); !stored) {
      std::cerr << "kovi evidence: " << stored.error() << '\n';
    } else if (error.failure == WalkingEvidenceFailure::transient) {
      backoff = *stored;
    }
  }
  return {{"code", error.code},
          {"message", error.message},
          {"failure", enumName(error.failure)},
          {"detail", error.detail},
          {"nextAttemptAt", backoff.nextAttemptAt ? Json(*backoff.nextAttemptAt) : Json()}};
}

// Whether the account's stored backoff lets a run try now; if not, says when
// it will and exits 1.
bool backoffAllowsAttempt(const WalkingEvidenceBackoffStore& backoffs, const std::string& account) {
  const auto backoff = backoffs.load(account);
  if (!backoff) {
    fail(kRefused, backoff.error());
    return false;
  }
  if (backoff->allowsAttempt(nowMillis())) return true;
  std::cerr << "kovi evidence: " << backoff->consecutiveFailures
            << " transient failures in a row; the next attempt is allowed at " << *backoff->nextAttemptAt
            << " (Unix ms)\n";
  printLine({{"code", "backoff"},
             {"consecutiveFailures", backoff->consecutiveFailures},
             {"nextAttemptAt", *backoff->nextAttemptAt}});
  exitStatus() = kRefused;
  return false;
}

void clearBackoff(WalkingEvidenceBackoffStore& backoffs, const std::string& account) {
  if (auto cleared = backoffs.clear(account); !cleared) std::cerr << "kovi evidence: " << cleared.error() << '\n';
}

// ---- envelope ----

void runEnvelope(const std::string& file, bool hashOnly) {
  auto text = readInput(file);
  if (!text) return fail(kUsageError, text.error());
  auto document = parseJson(*text);
  if (!document) return fail(kUsageError, file + ": " + document.error().message());
  auto envelope = decodeRecord<AttestedEvidenceEnvelope>(JsonView(*document));
  if (!envelope) return fail(kRefused, file + ": " + envelope.error().message());
  if (auto valid = envelope->validate(); !valid) return fail(kRefused, file + ": " + valid.error().message());
  const std::string canonical = envelope->canonicalText();
  std::cout << (hashOnly ? sha256Hex(canonical) : canonical) << '\n';
}

void addEnvelopeCommand(CLI::App& evidence) {
  struct Options {
    std::string file;
    bool hash = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = evidence.add_subcommand(
      "envelope",
      "Print the canonical text of a walking evidence envelope, the bytes whose SHA-256 the\n"
      "device key signs. FILE holds the 20 envelope fields as one JSON object in any key order\n"
      "(protocolVersion, purpose, appIdentity, environment, financialActorId, deviceKeyId,\n"
      "writerEpoch, chainId, registryAddress, koviId, rulesHash, requestId, challengeId,\n"
      "challenge, windowIds, expectedRevisions, measurementCutoffs, evidencePayloadHash,\n"
      "issuedAt, expiresAt; instants in Unix milliseconds). A missing, unknown or bad field\n"
      "exits 1 naming the field; text that is not JSON, or repeats a key, exits 2.");
  command->add_option("FILE", options->file, "The envelope JSON file, or - for standard input")->required();
  command->add_flag("--hash", options->hash, "Print the lowercase hex SHA-256 of the canonical text instead");
  command->callback([options] { runEnvelope(options->file, options->hash); });
}

// ---- key ----

void addKeyCommands(CLI::App& evidence) {
  CLI::App* key = evidence.add_subcommand("key", "This device's software P-256 keys under Kovi/DeviceKeys/v1");
  key->require_subcommand(1);

  auto createOptions = std::make_shared<DeviceOptions>();
  CLI::App* create = key->add_subcommand(
      "create", "Make a new device key and print its identifier (hex SHA-256 of its public key).");
  addDeviceOptions(create, *createOptions);
  create->callback([createOptions] {
    SoftwareDeviceKeyService keys(createOptions->dataPath(), createOptions->appIdentity);
    auto keyId = keys.generateKey();
    if (!keyId) return fail(kRefused, keyId.error().code + ": " + keyId.error().detail);
    std::cout << *keyId << '\n';
  });

  struct AssertOptions : DeviceOptions {
    std::string keyId;
    std::string clientDataHash;
  };
  auto assertOptions = std::make_shared<AssertOptions>();
  CLI::App* assertCommand = key->add_subcommand(
      "assert",
      "Make one assertion by KEYID over a client-data hash and print it as JSON\n"
      "{\"authenticatorData\", \"signature\"} in base64. Each assertion uses the key's next counter.");
  addDeviceOptions(assertCommand, *assertOptions);
  assertCommand->add_option("KEYID", assertOptions->keyId, "The key identifier `key create` printed")->required();
  assertCommand->add_option("--client-data-hash", assertOptions->clientDataHash, "64 lowercase hex digits")
      ->required()
      ->check(CLI::Validator(
          [](const std::string& hex) {
            return hex.size() == 64 && isEvidenceHex(hex) ? std::string() : "expected 64 lowercase hex digits";
          },
          "HEX"));
  assertCommand->callback([assertOptions] {
    Sha256Digest hash{};
    for (std::size_t index = 0; index < hash.size(); ++index) {
      hash[index] = static_cast<std::uint8_t>(std::stoi(assertOptions->clientDataHash.substr(2 * index, 2), nullptr, 16));
    }
    SoftwareDeviceKeyService keys(assertOptions->dataPath(), assertOptions->appIdentity);
    auto assertion = keys.generateAssertion(assertOptions->keyId, hash);
    if (!assertion) return fail(kRefused, assertion.error().code + ": " + assertion.error().detail);
    printLine(encodeRecord(*assertion));
  });
}

// ---- register, submit, pending ----

// The service side of a command, built once its options are known.
struct Session {
  SoftwareDeviceKeyService keys;
  AppAttestFileKeyStore keyStore;
  V6EvidencePendingStore pending;
  WalkingEvidenceBackoffStore backoffs;
  V6WalkingEvidenceAPI api;

  Session(const DeviceOptions& options, const NativeServiceOrigin& origin)
      : keys(options.dataPath(), options.appIdentity),
        keyStore(options.dataPath()),
        pending(options.dataPath()),
        backoffs(options.dataPath()),
        api(origin, options.token, clientOptions()) {}

  // The account's registered key, or the refusal printed and none.
  std::optional<AppAttestDeviceKey> registeredKey(const std::string& account) {
    auto key = keyStore.key(account);
    if (!key) {
      fail(kRefused, key.error());
      return std::nullopt;
    }
    if (!*key || !(*key)->serverDeviceKeyId) {
      printLine(errorJson(V6EvidenceSubmissionError::fromDeviceKey(
          AppAttestError{"device_key_not_registered", "run `kovi evidence register --account` first"})));
      exitStatus() = kRefused;
      return std::nullopt;
    }
    return **key;
  }

  // The account's key and a submitter signing with it; none, the refusal
  // printed, while the account's backoff runs or its key is not registered.
  std::optional<std::pair<AppAttestDeviceKey, V6WalkingEvidenceSubmitter>> beginSubmission(
      const DeviceOptions& options) {
    if (!backoffAllowsAttempt(backoffs, options.account)) return std::nullopt;
    auto key = registeredKey(options.account);
    if (!key) return std::nullopt;
    V6WalkingEvidenceSubmitter submitter({api, keys, pending, nowMillis, newV6RequestId}, options.appIdentity,
                                         key->environment);
    return std::pair{std::move(*key), std::move(submitter)};
  }

  static NativeClientOptions clientOptions() {
    NativeClientOptions options;
    options.transportFailureObserver = [](const NativeTransportFailure& failure) {
      std::cerr << "kovi evidence: no response: " << failure.reason << '\n';
    };
    return options;
  }
};

std::unique_ptr<Session> openSession(const DeviceOptions& options) {
  auto origin = configuredOrigin();
  if (!origin) {
    fail(kUsageError, origin.error());
    return nullptr;
  }
  return std::make_unique<Session>(options, *origin);
}

Json keyJson(const AppAttestDeviceKey& key) {
  return {{"keyId", key.keyId},
          {"serverDeviceKeyId", key.serverDeviceKeyId ? Json(*key.serverDeviceKeyId) : Json()},
          {"replacedServerDeviceKeyIds", key.replacedServerDeviceKeyIds}};
}

void addRegisterCommand(CLI::App& evidence) {
  auto options = std::make_shared<DeviceOptions>();
  CLI::App* command = evidence.add_subcommand(
      "register",
      "Register a new device key for --account with the service at $KOVI_SERVICE_ORIGIN: a\n"
      "\"registerDeviceKey\" challenge, a new key attested over its SHA-256, the registration.\n"
      "The account's earlier key becomes a replaced key, so its kovis' evidence writer can move\n"
      "to the new one. Prints {\"keyId\", \"serverDeviceKeyId\", \"replacedServerDeviceKeyIds\"};\n"
      "a refusal prints {\"code\", \"message\", \"failure\", \"detail\", \"nextAttemptAt\"} and exits 1.");
  addServiceOptions(command, *options);
  command->callback([options] {
    auto session = openSession(*options);
    if (!session) return;
    V6DeviceKeyRegistrar registrar(session->api, session->keys, session->keyStore, newV6RequestId,
                                   options->appIdentity, AppAttestEnvironment::development);
    auto key = registrar.registerKey(options->account);
    if (!key) {
      printLine(errorJson(key.error()));
      exitStatus() = kRefused;
      return;
    }
    printLine(keyJson(*key));
  });
}

Json receiptJson(const V6WalkingReceipt& receipt) {
  Json accepted = Json::array();
  for (const auto& day : receipt.accepted) {
    accepted.push_back({{"day", day.day}, {"revision", day.revision}, {"payloadHash", day.payloadHash}});
  }
  return {{"receipt",
           {{"requestId", receipt.requestId},
            {"writerEpoch", receipt.writerEpoch},
            {"deviceKeyId", receipt.deviceKeyId},
            {"accepted", std::move(accepted)}}}};
}

Json dayJson(const V6WalkingSyncPlanner::DayPlan& plan) {
  Json line{{"day", plan.day}};
  std::visit(
      [&line](const auto& outcome) {
        using Outcome = std::decay_t<decltype(outcome)>;
        if constexpr (std::is_same_v<Outcome, V6WalkingSyncPlanner::Submit>) {
          line["outcome"] = "submit";
          line["expectedRevision"] = outcome.entry.expectedRevision;
          line["payloadHash"] = outcome.payloadHash;
        } else if constexpr (std::is_same_v<Outcome, V6WalkingSyncPlanner::Unchanged>) {
          line["outcome"] = "unchanged";
        } else {
          line["outcome"] = std::is_same_v<Outcome, V6WalkingSyncPlanner::NoData> ? "noData" : "failed";
          line["code"] = outcome.reason.code;
          line["message"] = outcome.reason.message();
        }
      },
      plan.outcome);
  return line;
}

void reportResolved(const std::vector<V6WalkingEvidenceSubmitter::Resolved>& resolved) {
  for (const auto& item : resolved) {
    std::cerr << "kovi evidence: pending request " << item.record.requestId() << " for " << item.record.reference()
              << (item.droppedFor ? " dropped: " + *item.droppedFor : std::string(" accepted")) << '\n';
  }
}

void addSubmitCommand(CLI::App& evidence) {
  struct Options : DeviceOptions {
    std::string reference;
    std::string reads;
    std::optional<UnixMillis> cutoff;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = evidence.add_subcommand(
      "submit",
      "Sign and send REFERENCE's walking evidence from --reads (the file `kovi walking evaluate`\n"
      "reads) for --account, the whole way: pending records first (resent with their requestId),\n"
      "the kovi's context and writer (moved first from this device's replaced key), the day plan,\n"
      "a challenge, the envelope and its assertion, the pending record, the request.\n"
      "Prints one JSON line per day ({\"day\", \"outcome\": submit|unchanged|noData|failed, …}) and\n"
      "then {\"receipt\": …}. A refusal prints {\"code\", \"message\", \"failure\", \"detail\", \"nextAttemptAt\"} and exits 1;\n"
      "run again after a lost answer and the pending record is resent with the same requestId.");
  command->add_option("REFERENCE", options->reference, "The kovi reference")->required();
  command->add_option("--reads", options->reads, "The reads JSON file, or - for standard input")->required();
  addInstantOption(command, "--cutoff", options->cutoff, "When the reads were taken (default: now)");
  addServiceOptions(command, *options);
  command->callback([options] {
    const auto reads = decodeFile<std::vector<HealthEvidenceDayRead>>(options->reads);
    if (!reads) return;
    auto session = openSession(*options);
    if (!session) return;
    auto run = session->beginSubmission(*options);
    if (!run) return;
    auto& [key, submitter] = *run;
    auto outcome =
        submitter.submit(key, options->account, options->reference, *reads, options->cutoff.value_or(nowMillis()));
    if (!outcome) {
      printLine(errorJson(outcome.error(), &session->backoffs, options->account));
      exitStatus() = kRefused;
      return;
    }
    clearBackoff(session->backoffs, options->account);
    reportResolved(outcome->resolved);
    if (outcome->transfer) {
      std::cerr << "kovi evidence: evidence writer moved to this device's key, epoch " << outcome->transfer->writerEpoch
                << '\n';
    }
    for (const auto& day : outcome->days) printLine(dayJson(day));
    printLine(outcome->receipt ? receiptJson(*outcome->receipt) : Json{{"receipt", nullptr}});
  });
}

void addUploadCommand(CLI::App& evidence) {
  struct Options : DeviceOptions, HealthExportOptions {};
  auto options = std::make_shared<Options>();
  CLI::App* command = evidence.add_subcommand(
      "upload",
      "One pass of the automatic uploader for --account: page through the account's walking\n"
      "kovis at the service (a cursor the service repeats ends the list), read each open kovi's\n"
      "days from --export as `kovi evidence read` does, and submit them as `kovi evidence submit`\n"
      "does. Prints one JSON line per kovi ({\"reference\", \"days\", \"receipt\"} when posted,\n"
      "{\"reference\", \"error\"} when refused) and then {\"posted\", \"failed\", \"cursorLoop\"}.\n"
      "A transient failure (network, 5xx) counts into the account's backoff and exits 1; while\n"
      "that backoff runs, the command says when the next attempt is allowed and exits 1. A\n"
      "refused kovi exits 1 after the others were tried; a success clears the backoff.");
  addHealthExportOptions(command, *options);
  addServiceOptions(command, *options);
  command->callback([options] {
    auto session = openSession(*options);
    if (!session) return;
    auto run = session->beginSubmission(*options);
    if (!run) return;
    auto& [key, submitter] = *run;
    const auto priority = HealthSourcePriority::fromList(options->sourcePriority);
    const auto read = [options, &priority](const std::vector<HealthEvidenceDayWindow>& windows, UnixMillis cutoff) {
      HealthExportStore store(options->exportPath);
      auto reading = readHealthEvidence(store, {windows, cutoff, std::nullopt}, priority);
      if (reading.failure) std::cerr << "kovi evidence: " << *reading.failure << '\n';
      return std::move(reading.result.days);
    };
    // One pass of one process: the scope cannot change under it.
    const V6LiveHealthUploadScope scope{options->account, 0, 0, 0};
    V6LiveHealthUploader uploader({session->api, submitter, read, [&scope] { return scope; }, nowMillis, newV6RequestId});
    auto pass = uploader.runPass(key);
    if (!pass) {
      printLine(errorJson(pass.error(), &session->backoffs, options->account));
      exitStatus() = kRefused;
      return;
    }
    clearBackoff(session->backoffs, options->account);
    for (const auto& posted : pass->posted) {
      reportResolved(posted.outcome.resolved);
      Json days = Json::array();
      for (const auto& day : posted.outcome.days) days.push_back(dayJson(day));
      Json line{{"reference", posted.reference}, {"days", std::move(days)}};
      line.update(posted.outcome.receipt ? receiptJson(*posted.outcome.receipt) : Json{{"receipt", nullptr}});
      printLine(line);
    }
    for (const auto& failed : pass->failed) {
      printLine({{"reference", failed.reference}, {"error", errorJson(failed.error)}});
    }
    printLine({{"posted", pass->posted.size()}, {"failed", pass->failed.size()}, {"cursorLoop", pass->cursorLoop}});
    if (!pass->failed.empty()) exitStatus() = kRefused;
  });
}

Json operationJson(const V6EvidencePendingStore::Record& record) {
  if (const auto* submission = std::get_if<V6WalkingSubmission>(&record.operation)) {
    return {{"submission", {{"windowIds", submission->envelope.windowIds}, {"issuedAt", submission->envelope.issuedAt}}}};
  }
  return {{"transfer", {{"expectedEpoch", std::get<V6WriterTransferRequest>(record.operation).plan.expectedEpoch}}}};
}

void addPendingCommand(CLI::App& evidence) {
  auto options = std::make_shared<DeviceOptions>();
  CLI::App* command = evidence.add_subcommand(
      "pending",
      "List --account's pending evidence records (sent, not yet confirmed) under\n"
      "Kovi/PendingV6HealthEvidence as {\"records\": [{\"reference\", \"requestId\", \"deviceKeyID\",\n"
      "\"operation\"}], \"corrupt\": [\"FILE: why\"]}. Exits 1 when a file does not decode.");
  addDeviceOptions(command, *options);
  command->add_option("--account", options->account, "The account whose records to list")->required();
  command->callback([options] {
    const V6EvidencePendingStore store(options->dataPath());
    const auto listing = store.pending(options->account);
    Json records = Json::array();
    for (const auto& record : listing.records) {
      records.push_back({{"reference", record.reference()},
                         {"requestId", record.requestId()},
                         {"deviceKeyID", record.deviceKeyID},
                         {"operation", operationJson(record)}});
    }
    Json corrupt = Json::array();
    for (const auto& error : listing.corrupt) corrupt.push_back(error.detail);
    printLine({{"records", std::move(records)}, {"corrupt", std::move(corrupt)}});
    if (!listing.corrupt.empty()) exitStatus() = kRefused;
  });
}

}  // namespace

void addEvidenceSubmissionCommands(CLI::App& app) {
  CLI::App& evidence =
      commandGroup(app, "evidence", "Walking evidence: reading, cursors, envelopes, device keys, submission");
  addEnvelopeCommand(evidence);
  addKeyCommands(evidence);
  addRegisterCommand(evidence);
  addSubmitCommand(evidence);
  addUploadCommand(evidence);
  addPendingCommand(evidence);
}

}  // namespace kovi::tool
