#include <gtest/gtest.h>

#include <vector>

#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/working/WorkingCheckpointChain.h"
#include "KoviKit/working/WorkingCheckpointWriter.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/CheckpointSignature.h"

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
  const auto write = [&](UnixMillis at, bool final) {
    auto signed_ = writer.write(timeline, at, at - kStart + 900, final);
    EXPECT_TRUE(signed_.has_value());
    if (!signed_) return;
    const auto signature = testing::verifyCheckpointSignature(*signed_, software.publicKey(*keyId).value(), kAppIdentity);
    EXPECT_TRUE(signature.has_value()) << signature.error();
    chain.push_back(signed_->checkpoint);
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

  const auto report = verifyWorkingCheckpointChain(chain);
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

}  // namespace
}  // namespace kovi
