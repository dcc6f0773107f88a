// The purrl client against a real HTTP server on 127.0.0.1.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "KoviKit/purrl/PurrlAPI.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

constexpr const char* kToken = "token-1";
const std::string kArea = "/api/native/purrl/";

class PurrlStudyClientTest : public ::testing::Test {
 protected:
  testing::RecordingServer service_;
  PurrlAPI api{service_.serviceOrigin()};
};

// Empty when the call succeeded and `holds` accepts its record; otherwise the
// error's description or `what` names the record that came back wrong.
template <class T, class Check>
std::string checked(const std::expected<T, NativeAccountError>& result, Check holds, const char* what) {
  if (!result) return result.error().description();
  return holds(*result) ? std::string() : std::string(what);
}

TEST_F(PurrlStudyClientTest, EachEndpointSendsTheFeaturesAndDecodesTheAnswer) {
  const struct {
    std::string path;
    std::string method;
    std::string response;
    std::function<std::string(PurrlAPI&)> call;  // empty when the expected record came back
  } endpoints[] = {
      // The same documents the records' own tests decode in full.
      {"focus/stats", "GET", testing::testDataFile("purrl", "study-stats.json"),
       [](PurrlAPI& api) {
         return checked(api.studyStats(kToken), [](const auto& stats) {
           return stats.week.subjects.at(0).subject == "tyt_mat" && stats.exam->daysLeft == 41; }, "stats");
       }},
      {"focus/daily-sets", "GET",
       R"({"day": "2026-05-10", "kept": false,
           "items": [{"subject": "custom", "label": "Deneme", "target": 40, "done": 12, "kept": false}]})",
       [](PurrlAPI& api) {
         return checked(api.dailySets(kToken), [](const auto& sets) {
           return sets.items.at(0).identity() == "custom:deneme"; }, "identity");
       }},
      {"focus/countdowns", "GET",
       R"({"countdowns": [{"exam": "lgs", "day": "2026-06-14", "daysLeft": 35},
                          {"exam": "other", "label": "KPSS", "day": "2026-09-06", "daysLeft": 119}]})",
       [](PurrlAPI& api) {
         const std::vector<PurrlFocusExamCountdown> expected{
             {PurrlFocusExamKind::lgs, std::nullopt, "2026-06-14", 35},
             {PurrlFocusExamKind::other, "KPSS", "2026-09-06", 119}};
         return checked(api.countdowns(kToken), [&](const auto& got) { return got == expected; }, "countdowns");
       }},
      {"focus/mocks", "GET", testing::testDataFile("purrl", "mock-calendar.json"),
       [](PurrlAPI& api) {
         return checked(api.mockCalendar(kToken), [](const auto& calendar) {
           const auto& date = calendar.upcoming.at(0);
           return date.exam == PurrlFocusMockExam::ayt && date.at == 1778914800000; }, "upcoming");
       }},
      {"cat", "GET", R"({"name": "Tarçın", "mood": "happy", "reason": "kept_kovi", "petted": false})",
       [](PurrlAPI& api) {
         return checked(api.cat(kToken), [](const auto& cat) {
           return cat.reason == PurrlCatMoodReason::keptKovi && cat.name == "Tarçın"; }, "cat");
       }},
  };
  for (const auto& endpoint : endpoints) {
    SCOPED_TRACE(endpoint.path);
    service_.answer(kArea + endpoint.path, 200, endpoint.response);
    EXPECT_EQ(endpoint.call(api), "");
    const auto requests = service_.takeReceived();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].method, endpoint.method);
    EXPECT_EQ(requests[0].path, kArea + endpoint.path);
    EXPECT_EQ(requests[0].header("X-Purrl-Features"), "cat-growth,study-stats,daily-sets,exam-countdowns,mock-calendar");
    EXPECT_EQ(requests[0].header("Authorization"), std::string("Bearer ") + kToken);
  }
}

TEST_F(PurrlStudyClientTest, DailySetTargetsAreSentAsItemsAndTheAnswerRead) {
  service_.answer(kArea + "focus/daily-sets", 200,
         R"({"day": "2026-05-10", "kept": true, "items": [{"subject": "lgs_fen", "target": 20, "done": 20, "kept": true}]})");
  const auto sets = api.setDailySets(
      {{PurrlFocusSubject::lgsFen, std::nullopt, 20}, {PurrlFocusSubject::custom, "Paragraf+", 15}}, std::nullopt);
  ASSERT_TRUE(sets.has_value()) << sets.error().description();
  EXPECT_TRUE(sets->kept);
  const auto requests = service_.takeReceived();
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(requests[0].method, "POST");
  EXPECT_EQ(requests[0].body,
            R"({"items":[{"subject":"lgs_fen","target":20},{"subject":"custom","label":"Paragraf+","target":15}]})");
  EXPECT_EQ(requests[0].header("Authorization"), "<absent>");
}

TEST_F(PurrlStudyClientTest, UndecodableAndUnavailableAnswersReachTheCaller) {
  service_.answer(kArea + "cat", 200, R"({"unexpected": true})");
  const auto undecodable = api.cat(kToken);
  ASSERT_FALSE(undecodable.has_value());
  EXPECT_EQ(undecodable.error(), NativeAccountError::invalidResponse());
  service_.answer(kArea + "cat", 503, R"({"error": "purrl_unavailable"})");
  const auto unavailable = api.cat(kToken);
  ASSERT_FALSE(unavailable.has_value());
  EXPECT_EQ(unavailable.error(), NativeAccountError::service("purrl_unavailable"));
  EXPECT_EQ(api.message(unavailable.error()), "Kedine şu anda ulaşılamıyor. Biraz sonra yeniden dene.");
}

}  // namespace
}  // namespace kovi
