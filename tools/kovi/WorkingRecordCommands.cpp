// `kovi working checkpoints|journal|decode`: a session's checkpoint chain and
// its verdict, a checkpoint's hash, a journal's storage key, and any record
// of the remote working wire as the client reads it.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/working/WorkingCheckpointSignature.h"
#include "KoviKit/working/WorkingSessionJournalStore.h"
#include "KoviKit/working/WorkingWireRecords.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

namespace kovi::tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kWorkingGroupDescription =
    "Working sessions and their records";

// Reads FILE; says why and ends with `status` when it cannot.
std::optional<std::string> readOrReport(const std::string& path, int status) {
  auto text = readInput(path);
  if (!text) {
    std::cerr << "kovi: " << text.error() << '\n';
    exitStatus() = status;
    return std::nullopt;
  }
  return std::move(*text);
}

// A checkpoint document or key, read with repeated keys refused: the hash must
// cover the only reading of the file. Undecodable input ends with 2.
template <class T>
std::optional<T> decodeDocument(const std::string& path) {
  const auto text = readOrReport(path, 2);
  if (!text) return std::nullopt;
  auto decoded = decodeJsonText<T>(*text);
  if (!decoded) {
    std::cerr << "kovi: " << path << ": " << decoded.error().message() << '\n';
    exitStatus() = 2;
    return std::nullopt;
  }
  return std::move(*decoded);
}

template <class T>
Json optionalJson(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

void addCheckpointsCommands(CLI::App& working) {
  CLI::App* checkpoints = working.add_subcommand("checkpoints", "Check a session's hash-chained checkpoints");
  checkpoints->require_subcommand(1);

  struct VerifyOptions {
    std::string file;
    std::string deviceKey;
  };
  auto verifyOptions = std::make_shared<VerifyOptions>();
  CLI::App* verify = checkpoints->add_subcommand(
      "verify",
      "Verify FILE, a JSON array of one session's checkpoints in any order, and print\n"
      "  {\"status\", \"message\", \"acceptedMS\", \"through\", \"brokenAt\"}\n"
      "status is verified (consistent and final), pending (consistent, the final checkpoint\n"
      "has not arrived), inconsistent (a broken link: no time is accepted), none (no\n"
      "checkpoint) or, with --device-key, unverifiable (a checkpoint not signed by that key:\n"
      "no time is accepted); message is the Turkish text for it; acceptedMS the active time\n"
      "of a verified or pending chain (else 0); through the end of its last segment; brokenAt\n"
      "the sequence of the first checkpoint that does not fit (its reason goes to stderr).\n"
      "Exit 0 for verified or pending, 1 otherwise, 2 for unreadable input.");
  verify->add_option("FILE", verifyOptions->file, "The checkpoints JSON file, or - for standard input")->required();
  verify->add_option("--device-key", verifyOptions->deviceKey,
                     "The Mac's checkpoint key, {\"deviceID\", \"appIdentity\", \"publicKey\": base64 DER\n"
                     "SubjectPublicKeyInfo}: FILE then holds signed checkpoints {\"checkpoint\", \"signature\"}\n"
                     "and every signature is checked");
  verify->callback([verifyOptions] {
    WorkingCheckpointChainReport report;
    if (verifyOptions->deviceKey.empty()) {
      const auto chain = decodeDocument<std::vector<WorkingCheckpoint>>(verifyOptions->file);
      if (!chain) return;
      report = verifyWorkingCheckpointChain(*chain);
    } else {
      const auto key = decodeDocument<WorkingCheckpointKey>(verifyOptions->deviceKey);
      if (!key) return;
      const auto chain = decodeDocument<std::vector<WorkingSignedCheckpoint>>(verifyOptions->file);
      if (!chain) return;
      report = verifySignedWorkingCheckpointChain(*chain, *key);
    }
    if (!report.reason.empty()) std::cerr << "kovi: " << report.reason << '\n';
    std::cout << Json{{"status", report.status},
                      {"message", report.message},
                      {"acceptedMS", report.acceptedMS},
                      {"through", optionalJson(report.through)},
                      {"brokenAt", optionalJson(report.brokenAt)}}
                     .dump()
              << '\n';
    const bool accepted = report.status == WorkingCheckpointChainReport::Status::verified ||
                          report.status == WorkingCheckpointChainReport::Status::pending;
    exitStatus() = accepted ? 0 : 1;
  });

  auto hashFile = std::make_shared<std::string>();
  CLI::App* hash = checkpoints->add_subcommand(
      "hash",
      "Print the hash of the one checkpoint in FILE: the lowercase hex SHA-256 of its\n"
      "canonical JSON (declared key order, no whitespace), which the next checkpoint's\n"
      "previousHash must name.");
  hash->add_option("FILE", *hashFile, "The checkpoint JSON file, or - for standard input")->required();
  hash->callback([hashFile] {
    if (const auto checkpoint = decodeDocument<WorkingCheckpoint>(*hashFile)) {
      std::cout << workingCheckpointHash(*checkpoint) << '\n';
    }
  });
}

void addJournalCommands(CLI::App& working) {
  CLI::App* journal = working.add_subcommand("journal", "The participant's session journals");
  journal->require_subcommand(1);
  struct Options {
    std::string owner;
    std::string room;
    std::string session;
  };
  auto options = std::make_shared<Options>();
  CLI::App* key = journal->add_subcommand(
      "key",
      "Print the preferences key a session's journal is kept under: \"kovi.working.journal.v1.\"\n"
      "and the lowercase hex SHA-256 of owner, room and session, each entered as its UTF-8\n"
      "byte count, \":\" and its bytes.");
  key->add_option("--owner", options->owner, "The account that owns the journal")->required();
  key->add_option("--room", options->room, "The working kovi room")->required();
  key->add_option("--session", options->session, "The session")->required();
  key->callback([options] {
    std::cout << WorkingSessionJournalStore::key({options->owner, options->room, options->session}) << '\n';
  });
}

void addDecodeCommand(CLI::App& working) {
  struct Options {
    std::string type;
    std::string file;
  };
  auto options = std::make_shared<Options>();
  std::vector<std::string> names;
  for (const WorkingWireRecordType& type : workingWireRecordTypes()) names.emplace_back(type.name);
  CLI::App* decode = working.add_subcommand(
      "decode",
      "Decode FILE as one record of the remote working wire and print it re-encoded.\n"
      "The record is read the way the client reads the service (unknown keys ignored,\n"
      "optionals null or absent, unknown enumeration values and repeated keys refused) and\n"
      "written in declared key order. A record that does not decode exits 1 with its key\n"
      "path and the reason; an unreadable FILE exits 2.");
  decode->add_option("TYPE", options->type, "The record type")->required()->check(CLI::IsMember(names));
  decode->add_option("FILE", options->file, "The record's JSON file, or - for standard input")->required();
  decode->callback([options] {
    const auto text = readOrReport(options->file, 2);
    if (!text) return;
    const auto encoded = findWorkingWireRecordType(options->type)->reencode(*text);
    if (!encoded) {
      std::cerr << "kovi: " << options->file << ": " << encoded.error().message() << '\n';
      exitStatus() = 1;
      return;
    }
    std::cout << encoded->dump() << '\n';
  });
}

}  // namespace

void addWorkingRecordCommands(CLI::App& app) {
  CLI::App& working = commandGroup(app, "working", kWorkingGroupDescription);
  addCheckpointsCommands(working);
  addJournalCommands(working);
  addDecodeCommand(working);
}

}  // namespace kovi::tool
