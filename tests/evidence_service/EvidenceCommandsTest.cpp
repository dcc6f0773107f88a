#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/attest/SoftwareDeviceKeyService.h"
#include "KoviKit/evidence/WalkingEvidenceBackoffStore.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/FileIO.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/evidence_service/EvidenceFixture.h"
#include "tests/evidence_service/LoopbackEvidenceService.h"
#include "tests/support/KoviProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using nlohmann::json;
using testing::EvidenceFixture;
using testing::runKovi;

std::vector<json> jsonLines(const std::string& text) {
  std::vector<json> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(json::parse(line));
  return lines;
}

TEST(EvidenceCommandsTest, EnvelopePrintsTheCanonicalTextOrItsHashAndNamesABadField) {
  const testing::TemporaryDirectory directory;
  const auto good = directory.write("good.json", testing::evidenceData("envelope.json"));
  const auto canonical = runKovi({"evidence", "envelope", good.string()});
  ASSERT_EQ(canonical.exitStatus, 0) << canonical.err;
  EXPECT_NE(canonical.out.find(R"("challenge":"say \"hi\" \\","windowIds":[0,1,2],"expectedRevisions":[0,2,0],)"),
            std::string::npos)
      << canonical.out;
  const auto hash = runKovi({"evidence", "envelope", "--hash", good.string()});
  EXPECT_EQ(hash.out, sha256Hex(canonical.out.substr(0, canonical.out.size() - 1)) + "\n");

  auto missing = json::parse(testing::evidenceData("envelope.json"));
  missing.erase("koviId");
  const struct { std::string contents; int status; const char* says; } cases[] = {
      {missing.dump(), 1, "koviId: missing key"},
      {R"({"koviId":"1","koviId":"2"})", 2, "koviId: duplicate key"},
      {R"({"koviId":)", 2, "not valid JSON at line 1, column 11"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.says);
    const auto run = runKovi({"evidence", "envelope", directory.write("bad.json", c.contents).string()});
    EXPECT_EQ(run.exitStatus, c.status);
    EXPECT_NE(run.err.find(c.says), std::string::npos) << run.err;
  }
}

TEST(EvidenceCommandsTest, KeyCreateAndAssertMakeVerifiableAssertionsWithARisingCounter) {
  const testing::TemporaryDirectory directory;
  const auto created = runKovi({"evidence", "key", "create", "--data-dir", directory.path().string()});
  ASSERT_EQ(created.exitStatus, 0) << created.err;
  const std::string keyId = created.out.substr(0, created.out.size() - 1);
  const SoftwareDeviceKeyService keys(directory.path(), "app.kovi.cli");
  const auto publicKey = keys.publicKey(keyId).value();
  const std::string hashHex = sha256Hex("client data");
  // Each run is a new process: the second starts past the first one's reserved block.
  const auto block = static_cast<std::uint32_t>(SoftwareDeviceKeyService::kCounterBlock);
  for (const std::uint32_t counter : {1u, 1 + block}) {
    const auto run = runKovi({"evidence", "key", "assert", keyId, "--client-data-hash", hashHex, "--data-dir",
                              directory.path().string()});
    ASSERT_EQ(run.exitStatus, 0) << run.err;
    const auto printed = json::parse(run.out);
    const AppAttestAssertion assertion{base64Decode(printed.at("authenticatorData").get<std::string>()).value(),
                                       base64Decode(printed.at("signature").get<std::string>()).value()};
    EXPECT_EQ(verifyAssertion(publicKey, "app.kovi.cli", sha256("client data"), assertion), counter);
  }
  const auto badHash = runKovi({"evidence", "key", "assert", keyId, "--client-data-hash", "ABC", "--data-dir",
                                directory.path().string()});
  EXPECT_EQ(badHash.exitStatus, 2);
}

class EvidenceServiceCommandsTest : public ::testing::Test {
 protected:
  std::vector<std::string> withDevice(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--account", "actor-1", "--data-dir", directory.path().string()});
    return arguments;
  }

  std::vector<std::string> submitArguments(std::vector<int> days) const {
    json reads = json::array();
    for (const auto& read : EvidenceFixture::reads(std::move(days), 250)) {
      json buckets = json::array();
      for (const auto& bucket : read.buckets) {
        buckets.push_back({{"start", bucket.start.unixMillis()}, {"end", bucket.end.unixMillis()}, {"amount", 250}});
      }
      reads.push_back({{"day", read.day}, {"outcome", "measured"}, {"buckets", buckets}});
    }
    const auto file = directory.write("reads.json", reads.dump());
    return withDevice({"evidence", "submit", EvidenceFixture::kReference, "--reads", file.string(), "--cutoff",
                       "2026-05-07T08:00:00Z"});
  }

  testing::LoopbackEvidenceService service{EvidenceFixture::kReference, EvidenceFixture::rules(),
                                           EvidenceFixture::kStart};
  testing::TemporaryDirectory directory;
  testing::ScopedEnvironment origin{"KOVI_SERVICE_ORIGIN", service.origin()};
  testing::ScopedEnvironment token{"KOVI_TOKEN", "token-1"};
};

TEST_F(EvidenceServiceCommandsTest, RegisterThenSubmitPrintsOneLinePerDayAndTheReceiptOrTheRefusal) {
  const auto registered = runKovi(withDevice({"evidence", "register"}));
  ASSERT_EQ(registered.exitStatus, 0) << registered.out << registered.err;
  const auto key = json::parse(registered.out);
  EXPECT_EQ(key.at("keyId").get<std::string>().size(), 64u);

  const auto submitted = runKovi(submitArguments({0, 2}));
  ASSERT_EQ(submitted.exitStatus, 0) << submitted.out << submitted.err;
  const auto lines = jsonLines(submitted.out);
  ASSERT_EQ(lines.size(), 4u) << submitted.out;
  EXPECT_EQ(json::array({lines[0].at("outcome"), lines[1].at("outcome"), lines[2].at("outcome")}),
            json::array({"submit", "noData", "submit"}));
  EXPECT_EQ(lines[3].at("receipt").at("deviceKeyId"), key.at("serverDeviceKeyId"));
  EXPECT_EQ(lines[3].at("receipt").at("accepted").size(), 2u);

  // A refusal prints the Turkish message and the code.
  service.bumpRevisionBeforeNextSubmission(1);
  const auto refused = runKovi(submitArguments({1}));
  EXPECT_EQ(refused.exitStatus, 1);
  const auto error = json::parse(refused.out);
  EXPECT_EQ(json::array({error.at("code"), error.at("failure")}),
            json::array({"walking_evidence_revision_conflict", "rejected"}));
  // A rejected submission is rebuilt after a minute, not retried at once.
  EXPECT_GT(error.at("nextAttemptAt").get<std::int64_t>(), Date::now().unixMillis() + 50'000);
  EXPECT_EQ(error.at("message"),
            "Günün ölçümü başka bir paylaşımla güncellendi. Sağlık verisi yeniden okunup tekrar denenecek.");
}

TEST_F(EvidenceServiceCommandsTest, AKilledSubmitLeavesAPendingRecordThatTheNextRunResends) {
  ASSERT_EQ(runKovi(withDevice({"evidence", "register"})).exitStatus, 0);
  service.holdNextSubmission();
  const int child = testing::startKovi(submitArguments({0, 1}));
  // The request is at the service's door: the pending record was written first.
  const bool held = service.waitUntilHeld(std::chrono::seconds(60));
  ::kill(child, SIGKILL);
  int status = 0;
  ::waitpid(child, &status, 0);
  service.releaseHeld();
  ASSERT_TRUE(held);
  ASSERT_TRUE(WIFSIGNALED(status));

  const auto pending = runKovi(withDevice({"evidence", "pending"}));
  ASSERT_EQ(pending.exitStatus, 0) << pending.err;
  const auto listed = json::parse(pending.out);
  ASSERT_EQ(listed.at("records").size(), 1u);
  const std::string requestId = listed.at("records")[0].at("requestId");

  const auto resent = runKovi(submitArguments({0, 1}));
  ASSERT_EQ(resent.exitStatus, 0) << resent.out << resent.err;
  EXPECT_NE(resent.err.find("pending request " + requestId), std::string::npos) << resent.err;
  EXPECT_EQ(service.state().submittedRequestIds, (std::vector<std::string>{requestId}));
  EXPECT_EQ(service.state().day(0).revision, 1);
  EXPECT_EQ(json::parse(runKovi(withDevice({"evidence", "pending"})).out).at("records").size(), 0u);
}

// A kovi two and a half days in, so its evidence window is open now: the
// uploader reads its days from a sample export.
class EvidenceUploadCommandTest : public ::testing::Test {
 protected:
  static UnixMillis twoAndAHalfDaysAgo() {
    const UnixMillis start = Date::now().unixMillis() - 5 * EvidenceFixture::kDay / 2;
    return start - start % EvidenceFixture::kBucket;
  }

  void SetUp() override {
    const auto registered =
        runKovi({"evidence", "register", "--account", "actor-1", "--data-dir", directory.path().string()});
    ASSERT_EQ(registered.exitStatus, 0) << registered.err;
  }

  const UnixMillis start = twoAndAHalfDaysAgo();
  testing::TemporaryDirectory directory;
  testing::LoopbackEvidenceService service{EvidenceFixture::kReference, EvidenceFixture::rules(), start};
  testing::ScopedEnvironment origin{"KOVI_SERVICE_ORIGIN", service.origin()};
  testing::ScopedEnvironment token{"KOVI_TOKEN", "token-1"};
  const std::vector<std::string> upload{
      "evidence", "upload", "--account", "actor-1", "--data-dir", directory.path().string(), "--export",
      directory
          .write("samples.json",
                 json::array({{{"start", start}, {"end", start + 3'600'000}, {"value", 6000}, {"source", "Watch"}},
                              {{"start", start + EvidenceFixture::kDay},
                               {"end", start + EvidenceFixture::kDay + 3'600'000},
                               {"value", 7000},
                               {"source", "Watch"}}})
                     .dump())
          .string()};
};

TEST_F(EvidenceUploadCommandTest, OnePassPostsTheOpenKoviFromTheExport) {
  const auto run = runKovi(upload);
  ASSERT_EQ(run.exitStatus, 0) << run.out << run.err;
  const auto lines = jsonLines(run.out);
  ASSERT_EQ(lines.size(), 2u) << run.out;
  EXPECT_EQ(lines[0].at("reference"), EvidenceFixture::kReference);
  json outcomes = json::array();
  for (const auto& day : lines[0].at("days")) outcomes.push_back(day.at("outcome"));
  EXPECT_EQ(outcomes, json::array({"submit", "submit", "noData"}));
  EXPECT_EQ(lines[0].at("receipt").at("accepted").size(), 2u);
  EXPECT_EQ(lines[1], (json{{"posted", 1}, {"failed", 0}, {"cursorLoop", false}}));
}

TEST_F(EvidenceUploadCommandTest, ATransientFailureIsRememberedUntilItsNextAttemptAndClearedBySuccess) {
  service.loseNextAnswer();
  const auto lost = runKovi(upload);
  ASSERT_EQ(lost.exitStatus, 1) << lost.out << lost.err;
  const auto error = json::parse(lost.out);
  EXPECT_EQ(error.at("failure"), "transient");
  const WalkingEvidenceBackoffStore backoffs(directory.path());
  const auto stored = backoffs.load("actor-1");
  ASSERT_TRUE(stored.has_value()) << stored.error();
  EXPECT_EQ(stored->consecutiveFailures, 1);
  EXPECT_EQ(error.at("nextAttemptAt"), *stored->nextAttemptAt);

  // Too early: the service is not asked at all, and the user learns when to come back.
  const auto requests = service.state().submittedRequestIds;
  const auto early = runKovi(upload);
  EXPECT_EQ(early.exitStatus, 1);
  EXPECT_EQ(json::parse(early.out).at("nextAttemptAt"), *stored->nextAttemptAt);
  EXPECT_NE(early.err.find("the next attempt is allowed at " + std::to_string(*stored->nextAttemptAt)),
            std::string::npos)
      << early.err;
  EXPECT_EQ(service.state().submittedRequestIds, requests);

  // Once the time has come the pending record goes out again and the backoff is gone.
  ASSERT_TRUE(writeFileAtomically(backoffs.pathFor("actor-1"), R"({"consecutiveFailures":1,"nextAttemptAt":0})"));
  const auto resent = runKovi(upload);
  ASSERT_EQ(resent.exitStatus, 0) << resent.out << resent.err;
  EXPECT_FALSE(std::filesystem::exists(backoffs.pathFor("actor-1")));

  // A backoff file that does not decode stops the run and is left for the user to see.
  ASSERT_TRUE(writeFileAtomically(backoffs.pathFor("actor-1"), R"({"consecutiveFailures":"x"})"));
  const auto corrupt = runKovi(upload);
  EXPECT_EQ(corrupt.exitStatus, 1);
  EXPECT_NE(corrupt.err.find(backoffs.pathFor("actor-1").string() + " is corrupt"), std::string::npos) << corrupt.err;
  EXPECT_EQ(readFileLimited(backoffs.pathFor("actor-1"), 100), R"({"consecutiveFailures":"x"})");
}

}  // namespace
}  // namespace kovi
