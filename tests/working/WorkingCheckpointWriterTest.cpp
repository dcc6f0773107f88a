#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/attest/PurposeSigning.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/working/WorkingCheckpointSignature.h"
#include "KoviKit/working/WorkingCheckpointWriter.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Kind = WorkingTimeSegment::Kind;
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

TEST(WorkingCheckpointWriterTest, TimelineBecomesAVerifiedSignedChain) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService software(directory.path(), kAppIdentity);
  SwitchableKeys keys(software);
  const auto keyId = keys.generateKey();
  ASSERT_TRUE(keyId.has_value());
  WorkingCheckpointWriter writer("ses_8f2c", "dev_mac_1", 3, keys, *keyId);

  // The engine's timeline grows; its last segment is still open at each
  // checkpoint and continues into the next one.
  std::vector<WorkingTimeSegment> timeline = {{kStart, kStart + 50'000, Kind::active}};
  std::vector<WorkingCheckpoint> chain;
  std::vector<WorkingSignedCheckpoint> signedChain;
  const auto write = [&](UnixMillis at, bool final) {
    auto signed_ = writer.write(timeline, at, at - kStart + 900, final);
    EXPECT_TRUE(signed_.has_value());
    if (!signed_) return;
    chain.push_back(signed_->checkpoint);
    signedChain.push_back(*signed_);
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

  ASSERT_EQ(chain.size(), 3u);
  EXPECT_EQ(chain[0].segments, (std::vector<WorkingCheckpoint::Segment>{{kStart, kStart + 30'000, Kind::active}}));
  EXPECT_EQ(chain[1].segments, (std::vector<WorkingCheckpoint::Segment>{{kStart + 30'000, kStart + 50'000, Kind::active},
                                                                        {kStart + 50'000, kStart + 80'000, Kind::idle},
                                                                        {kStart + 80'000, kStart + 90'000, Kind::active}}));
  EXPECT_EQ(chain[2].segments, (std::vector<WorkingCheckpoint::Segment>{{kStart + 90'000, kStart + 95'000, Kind::active}}));
  EXPECT_EQ(chain[0].previousHash, kWorkingCheckpointGenesisHash);
  EXPECT_EQ(chain[2].previousHash, workingCheckpointHash(chain[1]));
  EXPECT_TRUE(chain[2].final);

  const WorkingCheckpointKey key{"dev_mac_1", kAppIdentity, software.publicKey(*keyId).value()};
  const auto report = verifySignedWorkingCheckpointChain(signedChain, key);
  EXPECT_EQ(report.status, WorkingCheckpointChainReport::Status::verified) << report.reason;
  EXPECT_EQ(report.acceptedMS, 65'000);
  EXPECT_EQ(report.through, kStart + 95'000);

  const auto closed = writer.write(timeline, kStart + 99'000, 99'900, false);
  ASSERT_FALSE(closed.has_value());
  EXPECT_EQ(closed.error().kind, WorkingCheckpointWriteError::Kind::finished);
}

TEST(WorkingCheckpointWriterTest, RefusesAClockThatRunsBackwards) {
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), kAppIdentity);
  const auto keyId = keys.generateKey();
  ASSERT_TRUE(keyId.has_value());
  WorkingCheckpointWriter writer("ses_1", "dev_1", 0, keys, *keyId);
  ASSERT_TRUE(writer.write({}, kStart, 5'000, false).has_value());
  for (const auto& [at, monotonic] : {std::pair{kStart - 1, 6'000LL}, std::pair{kStart + 1, 4'999LL}}) {
    const auto refused = writer.write({}, at, monotonic, false);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(refused.error().kind, WorkingCheckpointWriteError::Kind::clockMovedBackwards);
  }
  EXPECT_EQ(writer.nextSequence(), 1);
}

// A signed chain as the Mac writes it: three checkpoints, the last final.
struct SignedChain {
  std::vector<WorkingSignedCheckpoint> checkpoints;
  WorkingCheckpointKey key;
};

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

TEST(WorkingCheckpointWriterTest, SignaturesDecideWhetherAConsistentChainIsVerified) {
  using Status = WorkingCheckpointChainReport::Status;
  const testing::TemporaryDirectory directory;
  SoftwareDeviceKeyService keys(directory.path(), kAppIdentity);
  const std::string keyId = keys.generateKey().value();
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
