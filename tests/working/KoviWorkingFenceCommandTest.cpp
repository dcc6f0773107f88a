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

// The outcome and the fence on stdout: "published" with the fired fence, a
// refusal's reason with the fence as it was; no output on a usage error or a
// fence file that does not decode, which is named with its key path.
TEST(FenceFireCommandTest, PrintsTheOutcomeAndTheFence) {
  const testing::TemporaryDirectory directory;
  const std::vector<std::string> epochs{"--owner-epoch", "4", "--refresh-epoch", "9"};
  const struct {
    std::string fence, now;
    std::vector<std::string> options;
    int exitStatus;
    std::string result;  // "published", a refusal's reason, or the decoding error
  } cases[] = {
      {kArmedFence, "1500", epochs, 0, "published"},
      {kArmedFence, "999", epochs, 1, "early"},
      {kArmedFence, "1500", {"--owner-epoch", "4"}, 2, ""},
      {R"({"state":"primed"})", "1", epochs, 2, "state: unknown value \"primed\""},
  };
  for (const auto& example : cases) {
    SCOPED_TRACE(example.result);
    const auto file = directory.write("fence.json", example.fence);
    std::vector<std::string> arguments{"working", "fence", "fire", file.string(), "--now", example.now};
    arguments.insert(arguments.end(), example.options.begin(), example.options.end());
    const auto run = runKovi(arguments);
    ASSERT_EQ(run.exitStatus, example.exitStatus) << run.out << run.err;
    if (example.exitStatus == 2) {
      EXPECT_EQ(run.out, "");
      if (!example.result.empty()) { EXPECT_EQ(run.err, "kovi: " + file.string() + ": " + example.result + "\n"); }
      continue;
    }
    const auto output = nlohmann::json::parse(run.out);
    if (example.result == "published") {
      EXPECT_EQ(output["result"], "published");
      EXPECT_EQ(output["preparedAt"], 1500);
      EXPECT_EQ(output["fence"]["state"], "fired");
      EXPECT_EQ(output["fence"]["firedAt"], 1500);
    } else {
      EXPECT_EQ(output["result"], "failed");
      EXPECT_EQ(output["reason"], example.result);
      EXPECT_EQ(output["fence"], nlohmann::json::parse(example.fence)) << "a refused fire leaves the fence as it was";
    }
  }
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
