#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/working/WorkingCheckpointSignature.h"
#include "KoviKit/working/WorkingCheckpointWriter.h"
#include "KoviKit/working/WorkingSessionJournalStore.h"
#include "tests/support/KoviProcess.h"
#include "tests/support/TestData.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using testing::linkedChain;
using testing::runKovi;
constexpr UnixMillis kStart = 1'780'000'000'000;

std::string json(const std::vector<WorkingCheckpoint>& checkpoints) { return encodeValue(checkpoints).dump(); }

TEST(KoviWorkingCommandTest, VerifyPrintsTheChainsVerdict) {
  auto reordered = linkedChain(3, true);
  std::swap(reordered[0], reordered[2]);
  auto broken = linkedChain(3, true);
  broken[1].segments[1].kind = WorkingTimeSegment::Kind::active;
  const std::string through = std::to_string(kStart + 180'000);
  std::string repeated = json(linkedChain(3, true));
  repeated.replace(repeated.find("\"kind\":\"idle\""), 13, "\"kind\":\"idle\",\"kind\":\"active\"");

  const struct { std::string name, file; int exitStatus; std::string out, errPart; } cases[] = {
      {"verified", json(reordered), 0,
       R"({"status":"verified","message":"Oturum kayıtları doğrulandı.","acceptedMS":120000,"through":)" + through +
           R"(,"brokenAt":null})",
       ""},
      {"inconsistent", json(broken), 1,
       R"({"status":"inconsistent","message":"Oturum kayıtlarının tutarlılığı doğrulanamadı; bu kayıttan çalışma süresi kabul edilmedi.","acceptedMS":0,"through":null,"brokenAt":2})",
       "sequence 2: previousHash does not match"},
      {"repeated key", repeated, 2, "", "[0].segments[1].kind: duplicate key"},
  };
  const testing::TemporaryDirectory directory;
  for (const auto& test : cases) {
    SCOPED_TRACE(test.name);
    const auto file = directory.write("chain.json", test.file);
    const auto run = runKovi({"working", "checkpoints", "verify", file.string()});
    EXPECT_EQ(run.exitStatus, test.exitStatus) << run.err;
    EXPECT_EQ(run.out, test.out.empty() ? "" : test.out + "\n");
    EXPECT_NE(run.err.find(test.errPart), std::string::npos) << run.err;
  }
}

// With the Mac's key the file holds signed checkpoints and every signature
// is checked: a pending chain names the Mac, another key's chain is refused.
TEST(KoviWorkingCommandTest, VerifyWithTheDeviceKeyChecksEverySignature) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), "TEAM1234.app.kovi.mac");
  const std::string keyId = keys.generateKey().value();
  WorkingCheckpointWriter writer("ses_1", "dev_1", 0, keys, keyId);
  const std::vector<WorkingTimeSegment> timeline = {{kStart, kStart + 40'000, WorkingTimeSegment::Kind::active}};
  const std::vector<WorkingSignedCheckpoint> pending = {writer.write(timeline, kStart + 40'000, 40'000, false).value()};
  const auto pendingFile = directory.write("signed.json", encodeValue(pending).dump());
  const auto keyFile = [&](const std::string& id) {
    return directory.write(id + ".json", encodeRecord(WorkingCheckpointKey{"dev_1", keys.appIdentity(), keys.publicKey(id).value()}).dump());
  };

  const auto awaited = runKovi({"working", "checkpoints", "verify", pendingFile.string(), "--device-key", keyFile(keyId).string()});
  EXPECT_EQ(awaited.exitStatus, 0) << awaited.err;
  EXPECT_EQ(awaited.out, R"({"status":"pending","message":"Mac’in son oturum kaydı bekleniyor.","acceptedMS":40000,"through":)" +
                             std::to_string(kStart + 40'000) + ",\"brokenAt\":null}\n");

  const std::string otherKey = keys.generateKey().value();
  const auto refused = runKovi({"working", "checkpoints", "verify", pendingFile.string(), "--device-key", keyFile(otherKey).string()});
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.out, R"({"status":"unverifiable","message":"Oturum kaydı doğrulanamadı","acceptedMS":0,"through":null,"brokenAt":0})" "\n");
  EXPECT_NE(refused.err.find("sequence 0: "), std::string::npos) << refused.err;

  const auto unsigned_ = runKovi({"working", "checkpoints", "verify", directory.write("plain.json", json(linkedChain(3, false))).string(),
                                  "--device-key", keyFile(keyId).string()});
  EXPECT_EQ(unsigned_.exitStatus, 2);
  EXPECT_NE(unsigned_.err.find("[0].at: unknown key"), std::string::npos) << unsigned_.err;
}

TEST(KoviWorkingCommandTest, HashAndJournalKey) {
  const testing::TemporaryDirectory directory;
  const auto checkpoint = linkedChain(3, true)[1];
  const auto file = directory.write("checkpoint.json", encodeRecord(checkpoint).dump(2));
  const auto hash = runKovi({"working", "checkpoints", "hash", file.string()});
  EXPECT_EQ(hash.exitStatus, 0) << hash.err;
  EXPECT_EQ(hash.out, workingCheckpointHash(checkpoint) + "\n");

  const auto ab_c = runKovi({"working", "journal", "key", "--owner", "ab", "--room", "c", "--session", "s"});
  EXPECT_EQ(ab_c.exitStatus, 0);
  EXPECT_EQ(ab_c.out, WorkingSessionJournalStore::key({"ab", "c", "s"}) + "\n");
}

TEST(KoviWorkingCommandTest, DecodeReencodesOrNamesTheKeyPath) {
  const testing::TemporaryDirectory directory;
  const std::string sessionFile = testing::testDataPath("working", "wire/session.json").string();
  const auto decoded = runKovi({"working", "decode", "session", sessionFile});
  EXPECT_EQ(decoded.exitStatus, 0) << decoded.err;
  EXPECT_EQ(decoded.out.substr(0, 20), R"({"id":"ses_8f2c","ro)");

  const auto bad = directory.write("cohort.json", R"({"id":"c","roomID":"r","rulesHash":"h","createdAt":1,)"
                                                  R"("expiresAt":2,"state":"open","members":[{"accountID":"a",)"
                                                  R"("prepared":true,"ready":"yes"}]})");
  const auto refused = runKovi({"working", "decode", "cohort", bad.string()});
  EXPECT_EQ(refused.exitStatus, 1);
  EXPECT_EQ(refused.out, "");
  EXPECT_NE(refused.err.find("members[0].ready: expected a boolean"), std::string::npos) << refused.err;

  EXPECT_EQ(runKovi({"working", "decode", "banana", sessionFile}).exitStatus, 2);
  EXPECT_EQ(runKovi({"working", "decode", "session", (directory.path() / "missing.json").string()}).exitStatus, 2);
}

}  // namespace
}  // namespace kovi
