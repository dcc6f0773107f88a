#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/working/WorkingCheckpointChain.h"
#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

using Kind = WorkingTimeSegment::Kind;
using Status = WorkingCheckpointChainReport::Status;

// A linked chain of `count` checkpoints a minute apart; checkpoint k holds
// 40 s of active and 20 s of idle time. The last one is final when asked.
std::vector<WorkingCheckpoint> linkedChain(int count, bool endsFinal) {
  std::vector<WorkingCheckpoint> chain;
  std::string previousHash(kWorkingCheckpointGenesisHash);
  for (int sequence = 0; sequence < count; ++sequence) {
    const UnixMillis start = 1'780'000'000'000 + sequence * 60'000LL;
    WorkingCheckpoint checkpoint{"session-1", "mac-1", 2, sequence, previousHash, start + 60'000,
                                 5'000 + sequence * 60'000LL,
                                 {{start, start + 40'000, Kind::active}, {start + 40'000, start + 60'000, Kind::idle}},
                                 endsFinal && sequence == count - 1};
    previousHash = workingCheckpointHash(checkpoint);
    chain.push_back(std::move(checkpoint));
  }
  return chain;
}

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

  const std::vector<std::pair<std::string, std::string>> refused = {
      {R"("kind":"violation")", R"("kind":"overtime")"},
      {R"("final":false)", R"("final":false,"note":"x")"},
      {R"("epoch":1,)", ""},
      {R"("at":5)", R"("at":5.5)"},
  };
  const std::vector<std::string> reasons = {
      "segments[0].kind: unknown value \"overtime\"", "note: unknown key", "epoch: missing key",
      "at: expected an integer, found a number"};
  for (std::size_t index = 0; index < refused.size(); ++index) {
    std::string text = valid;
    text.replace(text.find(refused[index].first), refused[index].first.size(), refused[index].second);
    const auto result = decodeJsonText<WorkingCheckpoint>(text);
    ASSERT_FALSE(result.has_value()) << text;
    EXPECT_EQ(result.error().message().substr(0, reasons[index].size()), reasons[index]);
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

}  // namespace
}  // namespace kovi
