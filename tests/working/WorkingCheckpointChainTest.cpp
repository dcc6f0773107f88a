#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/working/WorkingCheckpointChain.h"
#include "KoviKit/working/WorkingCheckpointSignature.h"
#include "KoviKit/working/WorkingCheckpointWriter.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Kind = WorkingTimeSegment::Kind;
using Status = WorkingCheckpointChainReport::Status;
using testing::linkedChain;


// Where the last segment of `linkedChain(4, …)` ends.
constexpr UnixMillis kChainEnd = 1'780'000'000'000 + 4 * 60'000;

// Recomputes every link after an edit, so the edit itself is what breaks.
void relink(std::vector<WorkingCheckpoint>& chain) {
  std::string previousHash(kWorkingCheckpointGenesisHash);
  for (WorkingCheckpoint& checkpoint : chain) {
    checkpoint.previousHash = previousHash;
    previousHash = workingCheckpointHash(checkpoint);
  }
}

TEST(WorkingCheckpointTest, HashIsSha256OfTheCanonicalText) {
  WorkingCheckpoint checkpoint{"s\"1\n", "mac-ş", 0, 0, std::string(kWorkingCheckpointGenesisHash), 10, 3,
                               {{1, 9, Kind::break_}}, true};
  const std::string canonical = workingCheckpointCanonicalJson(checkpoint);
  EXPECT_EQ(canonical,
            R"({"sessionID":"s\"1\n","deviceID":"mac-ş","epoch":0,"sequence":0,"previousHash":")" +
                std::string(kWorkingCheckpointGenesisHash) +
                R"(","at":10,"monotonicMS":3,"segments":[{"start":1,"end":9,"kind":"break"}],"final":true})");
  // The record's JSON coding writes the same bytes, so a decoded file hashes
  // as the writer hashed it.
  EXPECT_EQ(encodeRecord(checkpoint).dump(), canonical);
  CanonicalJsonWriter generic;
  ASSERT_TRUE(writeCanonicalJson(generic, encodeRecord(checkpoint)).has_value());
  EXPECT_EQ(generic.text(), canonical);
  EXPECT_EQ(workingCheckpointHash(checkpoint).size(), 64u);
  EXPECT_EQ(workingCheckpointHash(checkpoint), sha256Hex(canonical));
  checkpoint.segments[0].end = 8;
  EXPECT_NE(workingCheckpointHash(checkpoint), sha256Hex(canonical));
}

TEST(WorkingCheckpointTest, DocumentsCarryExactlyTheirKeys) {
  const std::string valid =
      R"({"sessionID":"s","deviceID":"d","epoch":1,"sequence":0,"previousHash":"00","at":5,"monotonicMS":1,)"
      R"("segments":[{"start":1,"end":2,"kind":"violation"}],"final":false})";
  const auto decoded = decodeJsonText<WorkingCheckpoint>(valid);
  ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
  EXPECT_EQ(workingCheckpointCanonicalJson(*decoded), valid);

  // Each row of checkpoint-refusals.json replaces a piece of the document above.
  const auto refused = nlohmann::json::parse(testing::workingDataFile("checkpoint-refusals.json"));
  ASSERT_EQ(refused.size(), 4U);
  for (const auto& row : refused) {
    const std::string from = row.at("from"), to = row.at("to"), reason = row.at("reason");
    std::string text = valid;
    ASSERT_NE(text.find(from), std::string::npos) << from;
    text.replace(text.find(from), from.size(), to);
    const auto result = decodeJsonText<WorkingCheckpoint>(text);
    ASSERT_FALSE(result.has_value()) << text;
    EXPECT_EQ(result.error().message().substr(0, reason.size()), reason);
  }
}

struct ChainCase {
  std::string name;
  std::function<void(std::vector<WorkingCheckpoint>&)> edit;
  Status status;
  std::optional<std::int64_t> brokenAt;
};

TEST(WorkingCheckpointChainTest, ChainsAreJudgedAsAWhole) {
  const std::vector<ChainCase> cases = {
      {"intact and final", [](auto&) {}, Status::verified, {}},
      {"reordered file", [](auto& c) { std::swap(c[0], c[3]); std::swap(c[1], c[2]); }, Status::verified, {}},
      {"without final", [](auto& c) { c.back().final = false; relink(c); }, Status::pending, {}},
      {"changed previousHash", [](auto& c) { c[2].previousHash[5] ^= 1; }, Status::inconsistent, 2},
      {"missing sequence", [](auto& c) { c.erase(c.begin() + 1); }, Status::inconsistent, 2},
      {"missing first", [](auto& c) { c.erase(c.begin()); }, Status::inconsistent, 1},
      {"repeated sequence", [](auto& c) { c.insert(c.begin() + 2, c[2]); }, Status::inconsistent, 2},
      {"altered segment", [](auto& c) { c[1].segments[1].kind = Kind::active; }, Status::inconsistent, 2},
      {"checkpoint after final", [](auto& c) { c[2].final = true; relink(c); }, Status::inconsistent, 3},
      {"other device", [](auto& c) { c[3].deviceID = "mac-2"; relink(c); }, Status::inconsistent, 3},
      {"segment past its checkpoint", [](auto& c) { c[0].segments[1].end += 1; relink(c); }, Status::inconsistent, 0},
      {"segment before previous checkpoint", [](auto& c) { c[2].segments[0].start -= 1; relink(c); },
       Status::inconsistent, 2},
      {"empty segment", [](auto& c) { c[1].segments[0].end = c[1].segments[0].start; relink(c); },
       Status::inconsistent, 1},
      {"wall clock backwards", [](auto& c) { c[1].at = c[0].at - 1; c[1].segments.clear(); relink(c); },
       Status::inconsistent, 1},
      {"monotonic clock backwards", [](auto& c) { c[3].monotonicMS = 0; relink(c); }, Status::inconsistent, 3},
  };
  for (const ChainCase& test : cases) {
    SCOPED_TRACE(test.name);
    auto chain = linkedChain(4, true);
    test.edit(chain);
    const auto report = verifyWorkingCheckpointChain(chain);
    EXPECT_EQ(report.status, test.status) << report.reason;
    EXPECT_EQ(report.brokenAt, test.brokenAt) << report.reason;
    if (test.status == Status::inconsistent) {
      EXPECT_EQ(report.message, kWorkingChainInconsistentMessage);
      EXPECT_EQ(report.acceptedMS, 0);
      EXPECT_EQ(report.through, std::nullopt);
    } else {
      EXPECT_EQ(report.acceptedMS, 4 * 40'000);
      EXPECT_EQ(report.through, kChainEnd);
    }
  }
}

// checkpoints.json was linked by a separate script (its own JSON writer and
// SHA-256), so this holds the canonical form to an outside reading of it.
TEST(WorkingCheckpointChainTest, ChainLinkedElsewhereVerifies) {
  const auto chain = decodeJsonText<std::vector<WorkingCheckpoint>>(testing::workingDataFile("checkpoints.json"));
  ASSERT_TRUE(chain.has_value()) << chain.error().message();
  const auto report = verifyWorkingCheckpointChain(*chain);
  EXPECT_EQ(report.status, Status::verified) << report.reason;
  EXPECT_EQ(report.acceptedMS, (25 + 22 + 25) * 60'000);
  EXPECT_EQ(report.through, 1'780'000'000'000 + 80 * 60'000);
}

TEST(WorkingCheckpointChainTest, StatusTexts) {
  EXPECT_EQ(verifyWorkingCheckpointChain({}).status, Status::none);
  EXPECT_EQ(verifyWorkingCheckpointChain({}).message, "Mac çalışma oturumunu henüz başlatmadı.");
  const auto pending = verifyWorkingCheckpointChain(linkedChain(2, false));
  EXPECT_EQ(pending.message, "Son kayıtlar bekleniyor; oturumun doğrulama sonucu henüz kesinleşmedi.");
}

constexpr const char* kAppIdentity = "TEAM1234.app.kovi.mac";
constexpr UnixMillis kStart = 1'780'000'000'000;

// A device key that can be told to fail, to show a failed signature leaves
// the writer where it was.
class SwitchableKeys final : public DeviceKeyService {
 public:
  explicit SwitchableKeys(SoftwareDeviceKeyService& keys) : keys_(keys) {}
  bool isSupported() const override { return true; }
  std::expected<std::string, AppAttestError> generateKey() override { return keys_.generateKey(); }
  std::expected<std::vector<std::uint8_t>, AppAttestError> attestKey(std::string_view keyId,
                                                                   const Sha256Digest& hash) override {
    return keys_.attestKey(keyId, hash);
  }
  std::expected<AppAttestAssertion, AppAttestError> generateAssertion(std::string_view keyId,
                                                                     const Sha256Digest& hash) override {
    if (failing) return std::unexpected(AppAttestError{"assertion_failed", "the key is locked"});
    return keys_.generateAssertion(keyId, hash);
  }
  bool failing = false;

 private:
  SoftwareDeviceKeyService& keys_;
};

// A software device key, as the Mac's, with one key made.
class WorkingCheckpointWriterTest : public ::testing::Test {
 protected:
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService software{directory.path(), kAppIdentity};
  const std::string keyId = software.generateKey().value();
};

TEST_F(WorkingCheckpointWriterTest, TimelineBecomesAVerifiedSignedChain) {
  SwitchableKeys keys(software);
  WorkingCheckpointWriter writer("ses_8f2c", "dev_mac_1", 3, keys, keyId);

  // The engine's timeline grows; its last segment is still open at each
  // checkpoint and continues into the next one.
  std::vector<WorkingTimeSegment> timeline = {{kStart, kStart + 50'000, Kind::active}};
  std::vector<WorkingSignedCheckpoint> signedChain;
  const auto write = [&](UnixMillis at, bool final) {
    auto signed_ = writer.write(timeline, at, at - kStart + 900, final);
    EXPECT_TRUE(signed_.has_value());
    if (signed_) signedChain.push_back(*signed_);
  };
  write(kStart + 30'000, false);
  timeline.push_back({kStart + 50'000, kStart + 80'000, Kind::idle});
  timeline.push_back({kStart + 80'000, kStart + 95'000, Kind::active});
  write(kStart + 90'000, false);

  keys.failing = true;
  const auto refused = writer.write(timeline, kStart + 95'000, 95'900, true);
  ASSERT_FALSE(refused.has_value());
  EXPECT_EQ(refused.error().kind, WorkingCheckpointWriteError::Kind::signingFailed);
  EXPECT_EQ(writer.nextSequence(), 2);
  keys.failing = false;
  write(kStart + 95'000, true);

  ASSERT_EQ(signedChain.size(), 3u);
  const auto chain = [&](std::size_t index) { return signedChain[index].checkpoint; };
  EXPECT_EQ(chain(0).segments, (std::vector<WorkingCheckpoint::Segment>{{kStart, kStart + 30'000, Kind::active}}));
  EXPECT_EQ(chain(1).segments, (std::vector<WorkingCheckpoint::Segment>{{kStart + 30'000, kStart + 50'000, Kind::active},
                                                                         {kStart + 50'000, kStart + 80'000, Kind::idle},
                                                                         {kStart + 80'000, kStart + 90'000, Kind::active}}));
  EXPECT_EQ(chain(2).segments, (std::vector<WorkingCheckpoint::Segment>{{kStart + 90'000, kStart + 95'000, Kind::active}}));
  EXPECT_EQ(chain(0).previousHash, kWorkingCheckpointGenesisHash);
  EXPECT_EQ(chain(2).previousHash, workingCheckpointHash(chain(1)));
  EXPECT_TRUE(chain(2).final);

  const WorkingCheckpointKey key{"dev_mac_1", kAppIdentity, software.publicKey(keyId).value()};
  const auto report = verifySignedWorkingCheckpointChain(signedChain, key);
  EXPECT_EQ(report.status, WorkingCheckpointChainReport::Status::verified) << report.reason;
  EXPECT_EQ(report.acceptedMS, 65'000);
  EXPECT_EQ(report.through, kStart + 95'000);

  const auto closed = writer.write(timeline, kStart + 99'000, 99'900, false);
  ASSERT_FALSE(closed.has_value());
  EXPECT_EQ(closed.error().kind, WorkingCheckpointWriteError::Kind::finished);
}

TEST_F(WorkingCheckpointWriterTest, RefusesAClockThatRunsBackwards) {
  WorkingCheckpointWriter writer("ses_1", "dev_1", 0, software, keyId);
  ASSERT_TRUE(writer.write({}, kStart, 5'000, false).has_value());
  for (const auto& [at, monotonic] : {std::pair{kStart - 1, 6'000LL}, std::pair{kStart + 1, 4'999LL}}) {
    const auto refused = writer.write({}, at, monotonic, false);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(refused.error().kind, WorkingCheckpointWriteError::Kind::clockMovedBackwards);
  }
  EXPECT_EQ(writer.nextSequence(), 1);
}

// A signed chain as the Mac writes it: three checkpoints, the last final.
struct SignedChain { std::vector<WorkingSignedCheckpoint> checkpoints; WorkingCheckpointKey key; };

SignedChain writeSignedChain(SoftwareDeviceKeyService& keys, const std::string& keyId) {
  WorkingCheckpointWriter writer("ses_8f2c", "dev_mac_1", 3, keys, keyId);
  const std::vector<WorkingTimeSegment> timeline = {{kStart, kStart + 90'000, Kind::active}};
  SignedChain chain{{}, {"dev_mac_1", kAppIdentity, keys.publicKey(keyId).value()}};
  for (int index = 1; index <= 3; ++index) {
    chain.checkpoints.push_back(writer.write(timeline, kStart + index * 30'000, index * 30'000, index == 3).value());
  }
  return chain;
}

// Rewrites `checkpoints[index]` and re-links every later checkpoint to it, so
// the chain stays consistent and only the signatures can tell.
void rewriteKeepingTheChain(std::vector<WorkingSignedCheckpoint>& checkpoints, std::size_t index,
                            const std::function<void(WorkingCheckpoint&)>& edit) {
  edit(checkpoints[index].checkpoint);
  for (std::size_t next = index + 1; next < checkpoints.size(); ++next) {
    checkpoints[next].checkpoint.previousHash = workingCheckpointHash(checkpoints[next - 1].checkpoint);
  }
}

TEST_F(WorkingCheckpointWriterTest, SignaturesDecideWhetherAConsistentChainIsVerified) {
  SoftwareDeviceKeyService& keys = software;
  const std::string otherKeyId = keys.generateKey().value();
  const SignedChain written = writeSignedChain(keys, keyId);
  const SignedChain byOtherKey = writeSignedChain(keys, otherKeyId);

  const struct {
    const char* name;
    std::function<void(SignedChain&)> edit;
    Status status;
    std::string_view message;
    std::optional<std::int64_t> brokenAt;
    std::int64_t acceptedMS;
  } cases[] = {
      {"as written", [](SignedChain&) {}, Status::verified, kWorkingChainVerifiedMessage, std::nullopt, 90'000},
      {"the final checkpoint still awaited from the Mac", [](SignedChain& c) { c.checkpoints.pop_back(); },
       Status::pending, kWorkingChainAwaitingMacMessage, std::nullopt, 60'000},
      {"a checkpoint signed by another key",
       [&](SignedChain& c) { c.checkpoints[1].signature = byOtherKey.checkpoints[1].signature; },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 1, 0},
      {"checked against another key", [&](SignedChain& c) { c.key.publicKey = byOtherKey.key.publicKey; },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 0, 0},
      {"the key of another device", [](SignedChain& c) { c.key.deviceID = "dev_mac_2"; }, Status::unverifiable,
       kWorkingChainUnverifiableMessage, 0, 0},
      {"an inconsistent chain is reported as such before any signature is checked",
       [](SignedChain& c) { c.checkpoints[1].checkpoint.previousHash = std::string(64, 'f'); }, Status::inconsistent,
       kWorkingChainInconsistentMessage, 1, 0},
      {"the final checkpoint's time tampered, the chain intact",
       [](SignedChain& c) { rewriteKeepingTheChain(c.checkpoints, 2, [](WorkingCheckpoint& cp) { cp.segments[0].end -= 5'000; }); },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 2, 0},
      {"an earlier checkpoint tampered and every later link re-hashed",
       [](SignedChain& c) { rewriteKeepingTheChain(c.checkpoints, 0, [](WorkingCheckpoint& cp) { cp.monotonicMS += 1; }); },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 0, 0},
      {"checkpoint 1 signed again later, so checkpoint 2's counter does not rise",
       [&](SignedChain& c) {
         const auto assertion = signRecord(keys, keyId, kWorkingCheckpointPurpose, kWorkingCheckpointRecordName,
                                           encodeRecord(c.checkpoints[1].checkpoint));
         c.checkpoints[1].signature = compactAssertion(assertion.value());
       },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 2, 0},
      {"a signature that is not a compact assertion", [](SignedChain& c) { c.checkpoints[0].signature = "AAAA"; },
       Status::unverifiable, kWorkingChainUnverifiableMessage, 0, 0},
  };
  for (const auto& expected : cases) {
    SCOPED_TRACE(expected.name);
    SignedChain chain = written;
    expected.edit(chain);
    const auto report = verifySignedWorkingCheckpointChain(chain.checkpoints, chain.key);
    EXPECT_EQ(report.status, expected.status) << report.reason;
    EXPECT_EQ(report.message, expected.message);
    EXPECT_EQ(report.brokenAt, expected.brokenAt);
    EXPECT_EQ(report.acceptedMS, expected.acceptedMS);
  }
}

}  // namespace
}  // namespace kovi
