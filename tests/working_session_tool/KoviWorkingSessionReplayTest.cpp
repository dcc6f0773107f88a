#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/KoviProcess.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

using nlohmann::json;

// Five events: a start refused while the display sleeps and the app blocker
// is off, a start, a lock, a tick before the lock, and completion.
json traceDocument() {
  return json::parse(testing::testDataFile("working_session_tool", "trace.json"));
}

class KoviWorkingSessionReplayTest : public ::testing::Test {
 protected:
  std::string write(const json& document) {
    const auto path = scratch.path() / "session.json";
    std::ofstream(path) << document.dump();
    return path.string();
  }

  std::vector<json> lines(const std::string& out) {
    std::vector<json> parsed;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);) parsed.push_back(json::parse(line));
    return parsed;
  }

  kovi::testing::TemporaryDirectory scratch;
};

TEST_F(KoviWorkingSessionReplayTest, TracesEveryEventAndEndsWithTheSnapshot) {
  const json document = traceDocument();
  const auto run = kovi::testing::runKovi({"working", "session", "replay", "--trace", write(document)});
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  const auto output = lines(run.out);
  ASSERT_EQ(output.size(), 6U);
  // The trace keeps its keys in the documented order.
  EXPECT_EQ(run.out.substr(0, run.out.find('\n')),
            R"({"at":1000,"type":"start","ok":false,"error":"notReady","reasons":["displaySleeping",)"
            R"("appBlockingUnavailable"],"state":"preparing","suspensionReason":null})");
  EXPECT_EQ(output[2]["state"], "suspended");
  EXPECT_EQ(output[2]["suspensionReason"], "locked");
  EXPECT_EQ(output[3]["error"], "clockMovedBackwards");
  EXPECT_EQ(output[3]["reasons"], nullptr);
  const json& snapshot = output[5];
  EXPECT_EQ(snapshot["state"], "completed");
  EXPECT_EQ(snapshot["elapsedMS"], 40000);
  EXPECT_EQ(snapshot["candidateActiveMS"], 30000);
  EXPECT_EQ(snapshot["unverifiedMS"], 10000);
}

TEST_F(KoviWorkingSessionReplayTest, WithoutTraceOnlyTheSnapshotIsPrinted) {
  json document = traceDocument();
  document["events"] = json::array();
  const auto run = kovi::testing::runKovi({"working", "session", "replay", write(document)});
  ASSERT_EQ(run.exitStatus, 0) << run.err;
  const auto output = lines(run.out);
  ASSERT_EQ(output.size(), 1U);
  EXPECT_EQ(output[0]["state"], "preparing");
  EXPECT_EQ(output[0]["segments"], json::array());
}

TEST_F(KoviWorkingSessionReplayTest, AFileThatDoesNotDecodeExitsTwoNamingThePath) {
  json document = traceDocument();
  document["events"][0]["type"] = "teleport";
  const std::string path = write(document);
  const auto run = kovi::testing::runKovi({"working", "session", "replay", path});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "kovi: " + path + ": events[0].type: unknown value \"teleport\"\n");
}

}  // namespace
}  // namespace kovi
