// Runs the built kovi-holds binary as a person or a script would.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileIO.h"
#include "tests/holds/HoldsTestSnapshots.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi::holds {
namespace {

using namespace testing;
using nlohmann::json;

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

class KoviHoldsCommand : public ::testing::Test {
 protected:
  // Runs kovi-holds in Istanbul time with its data home inside the test's directory.
  Outcome run(const std::string& arguments) const {
    const auto out = directory.path() / "out", err = directory.path() / "err";
    const std::string command = "TZ=Europe/Istanbul XDG_DATA_HOME='" + (directory.path() / "data").string() + "' '" +
                                KOVI_HOLDS_BINARY + "' " + arguments + " >'" + out.string() + "' 2>'" +
                                err.string() + "'";
    const int raw = std::system(command.c_str());
    const auto contents = [](const std::filesystem::path& file) { return readFileLimited(file, 1 << 20).value_or(""); };
    return Outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, contents(out), contents(err)};
  }

  // Keys stay in the order they were printed.
  nlohmann::ordered_json runJson(const std::string& arguments) const {
    const Outcome result = run(arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(json::accept(result.out)) << result.out;
    return nlohmann::ordered_json::parse(result.out, nullptr, false);
  }

  kovi::testing::TemporaryDirectory directory;
};

std::vector<std::string> keysOf(const nlohmann::ordered_json& object) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : object.items()) keys.push_back(key);
  return keys;
}

TEST_F(KoviHoldsCommand, StatusJsonDescribesTheDemoStudyBlock) {
  const nlohmann::ordered_json printed = runJson("status --demo --json --at 2026-11-22T10:00:00+03:00");
  EXPECT_EQ(keysOf(printed), (std::vector<std::string>{"snapshot", "reason", "active", "action", "due", "windows", "plan"}));
  EXPECT_EQ(keysOf(printed["plan"]),
            (std::vector<std::string>{"runID", "mode", "allowlist", "bundleIDs", "domains", "until", "examWeek"}));
  const json status = printed;

  EXPECT_EQ(status["snapshot"], "ok");
  EXPECT_TRUE(status["reason"].is_null());
  EXPECT_EQ(status["active"], true);
  EXPECT_EQ(status["action"], "hold");
  const UnixMillis blockEnd = millisAt("2026-11-22T11:30:00+03:00");
  EXPECT_EQ(status["due"], (json{{"kind", "study"}, {"until", blockEnd}}));
  EXPECT_EQ(status["windows"], (json::array({{{"kind", "study"},
                                               {"start", millisAt("2026-11-22T09:00:00+03:00")},
                                               {"end", blockEnd}}})));
  // The plan's fields come from the planner, which its own tests check; the
  // command prints its instants as integers.
  EXPECT_EQ(status["plan"]["until"], blockEnd);

  const json standing = runJson("status --demo --json --main-app-running --at 2026-11-22T10:00:00+03:00");
  EXPECT_EQ(standing["action"], "standBy");
  EXPECT_EQ(standing["plan"], status["plan"]);
}

TEST_F(KoviHoldsCommand, StatusSaysItInASentence) {
  const Outcome study = run("status --demo --at 2026-11-22T10:00:00+03:00");
  EXPECT_EQ(study.status, 0);
  EXPECT_EQ(study.out,
            "Study hold until 11:30 (local time): only study apps may come to the front; communication apps stay "
            "usable.\n");
  const Outcome night = run("status --demo --at 2026-11-22T23:45:00+03:00");
  EXPECT_NE(night.out.find("Sleep hold until 07:00 tomorrow (local time)"), std::string::npos) << night.out;
  const Outcome missing = run("status");
  EXPECT_EQ(missing.out, "Nothing is held: the snapshot is missing at " +
                             (directory.path() / "data/Kovi/Holds/holds.json").string() + ". The agent would exit.\n");
}

// Why the file counts as no snapshot reaches the user; which failures there
// are is the snapshot reader's own table.
TEST_F(KoviHoldsCommand, UndecodableSnapshotExitsAndSaysWhy) {
  const auto file = directory.write(
      "holds.json", R"({"version":1,"stopped":false,"syncedAt":0,"keepCommunication":true,"examWeek":{}})");
  EXPECT_EQ(json(runJson("status --json --at 2026-11-22T10:00:00+03:00 --file '" + file.string() + "'")),
            (json{{"snapshot", "undecodable"}, {"reason", "examWeek.startDay: missing key"}, {"active", false},
                  {"action", "exit"}, {"due", {{"kind", "none"}, {"until", nullptr}}}, {"windows", json::array()},
                  {"plan", nullptr}}));
}

TEST_F(KoviHoldsCommand, ScheduleJsonCoversTheDemoDay) {
  const nlohmann::ordered_json printed = runJson("schedule --demo --json --day 2026-11-22");
  EXPECT_EQ(keysOf(printed), (std::vector<std::string>{"day", "segments"}));
  const json schedule = printed;
  EXPECT_EQ(schedule["day"], "2026-11-22");
  const json& segments = schedule["segments"];
  const std::vector<std::pair<const char*, const char*>> expected{
      {"2026-11-22T00:00:00+03:00", "sleep"}, {"2026-11-22T07:00:00+03:00", "social"},
      {"2026-11-22T09:00:00+03:00", "study"}, {"2026-11-22T11:30:00+03:00", "social"},
      {"2026-11-22T14:00:00+03:00", "study"}, {"2026-11-22T16:30:00+03:00", "social"},
      {"2026-11-22T23:30:00+03:00", "sleep"}};
  ASSERT_EQ(segments.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    SCOPED_TRACE(index);
    EXPECT_EQ(segments[index]["from"], millisAt(expected[index].first));
    EXPECT_EQ(segments[index]["kind"], expected[index].second);
    const UnixMillis to = index + 1 < expected.size() ? millisAt(expected[index + 1].first)
                                                      : millisAt("2026-11-23T00:00:00+03:00");
    EXPECT_EQ(segments[index]["to"], to);
  }
  const Outcome plain = run("schedule --demo --day 2026-11-22");
  EXPECT_NE(plain.out.find("  09:00–11:30  Study hold: only study apps may come to the front\n"), std::string::npos)
      << plain.out;
}

TEST_F(KoviHoldsCommand, UsageErrorsExitWithStatusTwo) {
  for (const char* arguments : {"status --at 2026-11-22T10:00",  // no offset
                                "schedule --day 2026-02-30", "status --demo --file /tmp/holds.json",
                                "status --frobnicate", "schedule 2026-11-22", "vacuum"}) {
    const Outcome result = run(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_NE(result.err, "") << arguments;
  }
}

}  // namespace
}  // namespace kovi::holds
