// `kovi working fence fire` and `kovi working lease check` as run by people
// testing the service: real files, the built tool, its output and status.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/working/WorkingOfflineLease.h"
#include "tests/support/KoviProcess.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/working/OfflineLeaseServer.h"

namespace kovi {
namespace {

using testing::runKovi;

constexpr const char* kArmedFence =
    R"({"state":"armed","plan":{"ownerID":"o","roomID":"r","rulesHash":"h","windowID":"w",)"
    R"("startsAt":1000,"lateDeadline":2000},"ownerEpoch":4,"refreshEpoch":9,"armGeneration":1,)"
    R"("firedAt":null,"receipt":null})";

struct FireCase {
  const char* name;
  std::string fence;
  std::vector<std::string> options;
  int exitStatus;
  std::string result;  // "published", a failure reason, or empty for a usage error
  friend void PrintTo(const FireCase& example, std::ostream* out) { *out << example.name; }
};

class FenceFireCommandTest : public ::testing::TestWithParam<FireCase> {
 protected:
  testing::TemporaryDirectory directory;
};

TEST_P(FenceFireCommandTest, PrintsTheOutcomeAndTheFence) {
  const auto file = directory.write("fence.json", GetParam().fence);
  std::vector<std::string> arguments{"working", "fence", "fire", file.string()};
  arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
  const auto run = runKovi(arguments);
  ASSERT_EQ(run.exitStatus, GetParam().exitStatus) << run.out << run.err;
  if (GetParam().result.empty()) {
    EXPECT_EQ(run.out, "");
    return;
  }
  const auto output = nlohmann::json::parse(run.out);
  const auto before = nlohmann::json::parse(GetParam().fence);
  if (GetParam().result == "published") {
    EXPECT_EQ(output["result"], "published");
    EXPECT_EQ(output["preparedAt"], 1500);
    EXPECT_EQ(output["fence"]["state"], "fired");
    EXPECT_EQ(output["fence"]["firedAt"], 1500);
  } else {
    EXPECT_EQ(output["result"], "failed");
    EXPECT_EQ(output["reason"], GetParam().result);
    EXPECT_EQ(output["fence"], before) << "a refused fire leaves the fence as it was";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Runs, FenceFireCommandTest,
    ::testing::Values(
        FireCase{"published", kArmedFence, {"--now", "1500", "--owner-epoch", "4", "--refresh-epoch", "9"}, 0,
                 "published"},
        FireCase{"early", kArmedFence, {"--now", "999", "--owner-epoch", "4", "--refresh-epoch", "9"}, 1, "early"},
        FireCase{"missingEpoch", kArmedFence, {"--now", "1500", "--owner-epoch", "4"}, 2, ""}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FenceFireCommandErrorTest, NamesTheFileAndTheKeyPath) {
  testing::TemporaryDirectory directory;
  const auto file = directory.write("fence.json", R"({"state":"primed"})");
  const auto run = runKovi({"working", "fence", "fire", file.string(), "--now", "1", "--owner-epoch", "1",
                            "--refresh-epoch", "1"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(run.err, "kovi: " + file.string() + ": state: unknown value \"primed\"\n");
}

class LeaseCheckCommandTest : public ::testing::Test {
 protected:
  testing::TemporaryDirectory directory;
  testing::OfflineLeaseServer server;

  testing::KoviRun check(const std::string& envelope, const std::string& deviceID, UnixMillis now) {
    WorkingOfflineBinding binding = testing::sampleOfflineBinding();
    binding.deviceID = deviceID;
    return runKovi({"working", "lease", "check", directory.write("envelope.json", envelope).string(), "--binding",
                    directory.write("binding.json", encodeRecord(binding).dump()).string(), "--server-keys",
                    directory.write("keys.json", R"({"server-1":")" + server.publicKeyBase64() + R"("})").string(),
                    "--now", std::to_string(now)});
  }
};

TEST_F(LeaseCheckCommandTest, PrintsTheLeaseOrTheRefusal) {
  const UnixMillis issued = testing::kSampleLeaseIssuedAt;
  const std::string envelope = server.envelope(testing::sampleOfflineLease());
  const auto accepted = check(envelope, "mac-1", issued + 119'999);
  EXPECT_EQ(accepted.exitStatus, 0) << accepted.err;
  EXPECT_EQ(nlohmann::ordered_json::parse(accepted.out), testing::sampleOfflineLease());

  const auto mismatch = check(envelope, "mac-2", issued);
  EXPECT_EQ(mismatch.exitStatus, 1);
  EXPECT_EQ(nlohmann::json::parse(mismatch.out), (nlohmann::json{{"error", "bindingMismatch"}, {"field", "deviceID"}}));

  const auto torn = check(envelope.substr(0, 20), "mac-1", issued);
  EXPECT_EQ(torn.exitStatus, 2);
  EXPECT_EQ(nlohmann::json::parse(torn.out)["error"], "invalidEnvelope");
}

}  // namespace
}  // namespace kovi
