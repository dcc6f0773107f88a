#include "KoviKit/evidence/V6EvidencePendingStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "KoviKit/foundation/FileIO.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Store = V6EvidencePendingStore;

V6WalkingSubmission submission(std::string reference, std::string requestId) {
  V6WalkingSubmission result;
  result.reference = std::move(reference);
  result.envelope.registryAddress = "0x" + std::string(40, '1');
  result.envelope.koviId = "7";
  result.envelope.rulesHash = std::string(64, 'a');
  result.envelope.evidencePayloadHash = std::string(64, 'b');
  result.envelope.requestId = std::move(requestId);
  result.envelope.windowIds = {0};
  result.envelope.expectedRevisions = {0};
  result.envelope.measurementCutoffs = {900000};
  result.assertion = {{1, 2, 3}, {4, 5}};
  V6WalkingObservation observation;
  observation.windowStart = 0;
  observation.windowEnd = 86'400'000;
  observation.measurementCutoff = 900'000;
  observation.buckets = {{0, 900'000, "120"}};
  result.entries = {{0, 0, observation}};
  return result;
}

Store::Record record(std::string owner, std::string reference, std::string requestId) {
  return {std::string(Store::kProtocolGeneration), std::move(owner), "device-key-1",
          submission(std::move(reference), std::move(requestId))};
}

class V6EvidencePendingStoreTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  Store store{directory.path()};
};

TEST_F(V6EvidencePendingStoreTest, RecordsRoundTripInTheirWireShapeAndAreListedPerOwner) {
  const auto kept = record("owner-a", "kovi-1", "req-1");
  Store::Record transfer{"v6", "owner-a", "device-key-2",
                         V6WriterTransferRequest{{"kovi-2", "req-2", "device-key-2", 4, "ch", "secret", std::nullopt},
                                                 {{9}, {8}}}};
  ASSERT_TRUE(store.save(kept));
  ASSERT_TRUE(store.save(transfer));
  ASSERT_TRUE(store.save(record("owner-b", "kovi-1", "req-3")));

  const std::string text = Store::encode(transfer);
  EXPECT_TRUE(text.starts_with(R"({"protocolGeneration":"v6","ownerID":"owner-a","deviceKeyID":"device-key-2",)"
                               R"("operation":{"transfer":{"_0":{"plan":{"reference":"kovi-2")"))
      << text;
  EXPECT_TRUE(Store::encode(kept).find(R"("operation":{"submission":{"_0":{"action":"submitWalkingEvidence")") !=
              std::string::npos);

  const auto listing = store.pending("owner-a");
  EXPECT_TRUE(listing.corrupt.empty());
  ASSERT_EQ(listing.records.size(), 2u);
  EXPECT_TRUE(std::ranges::find(listing.records, kept) != listing.records.end());
  EXPECT_TRUE(std::ranges::find(listing.records, transfer) != listing.records.end());
  EXPECT_EQ(store.pending("owner-b").records.size(), 1u);
  EXPECT_TRUE(store.pending("owner-c").records.empty());
}

TEST_F(V6EvidencePendingStoreTest, TheSameRecordAgainIsAResendAnotherIsAConflictAndOnlyTheAnsweredOneGoes) {
  ASSERT_TRUE(store.save(record("owner", "kovi", "req-1")));
  EXPECT_TRUE(store.save(record("owner", "kovi", "req-1")));
  const auto conflict = store.save(record("owner", "kovi", "req-2"));
  ASSERT_FALSE(conflict.has_value());
  EXPECT_EQ(conflict.error().failure, Store::Failure::conflict);
  ASSERT_TRUE(store.remove("owner", "kovi", "req-other"));
  EXPECT_EQ(store.pending("owner").records.size(), 1u);
  ASSERT_TRUE(store.remove("owner", "kovi", "req-1"));
  EXPECT_TRUE(store.pending("owner").records.empty());
  EXPECT_TRUE(store.remove("owner", "kovi", "req-1")) << "removing what is gone is not an error";
}

TEST_F(V6EvidencePendingStoreTest, ACorruptFileIsReportedByNameAndNeverOverwritten) {
  const auto path = store.pathFor("owner", "kovi");
  // damaged-pending.json: file contents and the reason the listing gives.
  using Damaged = std::pair<std::string, std::string>;
  for (const auto& [contents, reason] :
       nlohmann::json::parse(testing::evidenceData("damaged-pending.json")).get<std::vector<Damaged>>()) {
    SCOPED_TRACE(contents);
    ASSERT_TRUE(writeFileAtomically(path, contents));
    const auto listing = store.pending("owner");
    ASSERT_EQ(listing.corrupt.size(), 1u);
    EXPECT_NE(listing.corrupt[0].detail.find(path.filename().string()), std::string::npos);
    EXPECT_NE(listing.corrupt[0].detail.find(reason), std::string::npos) << listing.corrupt[0].detail;
    const auto saved = store.save(record("owner", "kovi", "req-1"));
    ASSERT_FALSE(saved.has_value());
    EXPECT_EQ(saved.error().failure, Store::Failure::corrupt);
    EXPECT_EQ(readFileLimited(path, 4096), contents);
  }
}

TEST_F(V6EvidencePendingStoreTest, ARecordOverTheLimitIsRefused) {
  auto large = record("owner", "kovi", "req-1");
  auto& buckets = std::get<V6WalkingSubmission>(large.operation).entries[0].observation.buckets;
  // Each bucket writes about 40 bytes.
  buckets.assign(Store::kRecordLimit / 30, V6WalkingBucket{0, 900'000, "1"});
  const auto saved = store.save(large);
  ASSERT_FALSE(saved.has_value());
  EXPECT_EQ(saved.error().failure, Store::Failure::tooLarge);
  EXPECT_FALSE(std::filesystem::exists(store.pathFor("owner", "kovi")));
}

}  // namespace
}  // namespace kovi
