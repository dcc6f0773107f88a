#include "KoviKit/working/WorkingJudgementCoding.h"

#include <gtest/gtest.h>

#include "tests/working/WorkingTestData.h"

namespace kovi {
namespace {

TEST(WorkingJudgementCodingTest, WorkFileErrorsNameTheirPath) {
  const struct { const char* text; std::string message; } cases[] = {
      {R"({"members": [], "extra": 1})", "extra: unknown key"},
      {R"({})", "members: missing key"},
      {R"({"members": [{"accountID": "a"}]})", "members[0].sessions: missing key"},
      {R"({"members": [{"accountID": "a", "sessions": [{"id": "s", "segments": [{"start": 1}]}]}]})",
       "members[0].sessions[0].segments[0].end: missing key"},
      {R"({"members": [{"accountID": 7, "sessions": []}]})", "members[0].accountID: expected a string, found a number"},
      {R"({"members": )",
       "not valid JSON at line 1, column 13: syntax error while parsing value - unexpected end of input; expected '[', "
       "'{', or a literal"},
  };
  for (const auto& broken : cases) {
    SCOPED_TRACE(broken.text);
    const auto work = decodeWorkingWork(broken.text);
    ASSERT_FALSE(work.has_value());
    EXPECT_EQ(work.error().message(), broken.message);
  }
}

TEST(WorkingJudgementCodingTest, WorkFileDecodesAndTheJudgementEncodesEveryMemberInOrder) {
  const auto work = decodeWorkingWork(testing::workingDataFile("race-work.json"));
  ASSERT_TRUE(work.has_value()) << work.error().message();
  ASSERT_TRUE(work->size() == 4 && (*work)[0].sessions.size() == 2);
  // Optional keys take their defaults; given ones are kept.
  EXPECT_EQ((*work)[0].violations, 0);
  EXPECT_EQ((*work)[0].address, std::nullopt);
  EXPECT_EQ((*work)[1].violations, 1);
  EXPECT_EQ((*work)[0].sessions[1].segments[0],
            (WorkingWorkSegment{testing::istanbulTime(1, 20), testing::istanbulTime(1, 22)}));
  const auto judgement = judgeWorkingRules(testing::workingRules("race-rules.json"), *work);
  ASSERT_TRUE(judgement.has_value()) << judgement.error();
  const nlohmann::ordered_json encoded = encodeWorkingJudgement(*judgement);
  EXPECT_EQ(encoded["settlement"], nlohmann::ordered_json::parse(
                                       R"({"kind": "payout", "fallbackUsed": false, "carriedBps": 0})"));
  const auto& members = encoded["members"];
  ASSERT_EQ(members.size(), 4U);
  const nlohmann::ordered_json deniz = members[3];
  EXPECT_EQ(deniz["accountID"], "deniz");
  EXPECT_EQ(deniz["countedMilliseconds"], 55 * 60'000);  // the 8-minute session is under the minimum
  EXPECT_TRUE(deniz["rank"].is_null());
  EXPECT_EQ(deniz["eligible"], false);
  EXPECT_EQ(members[0]["rank"], 1);
  EXPECT_EQ(members[1]["payoutBps"], 4500);
  std::vector<std::string> keys;
  for (const auto& [key, value] : members[0].items()) keys.push_back(key);
  const std::vector<std::string> expectedKeys{
      "accountID", "progressMilliseconds", "targetMilliseconds", "successful", "countedMilliseconds",
      "successfulDays", "bestStreak", "reachedAt", "eligible", "rank", "payoutBps", "days", "windows"};
  EXPECT_EQ(keys, expectedKeys);
}

}  // namespace
}  // namespace kovi
