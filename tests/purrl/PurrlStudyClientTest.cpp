#include <gtest/gtest.h>
#include <httplib.h>

#include <functional>
#include <map>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "KoviKit/purrl/PurrlAPI.h"

namespace kovi {
namespace {

// What the loopback service saw of one request.
struct SeenRequest {
  std::string method;
  std::string path;
  std::string features;
  std::string authorization;
  std::string body;
};

// A purrl service on 127.0.0.1 that answers each path with a canned status and body.
class LoopbackPurrlService {
 public:
  struct Answer {
    int status = 200;
    std::string body;
  };

  LoopbackPurrlService() {
    const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
      const std::lock_guard lock(mutex_);
      seen_.push_back({request.method, request.path, request.get_header_value("X-Purrl-Features"),
                       request.get_header_value("Authorization"), request.body});
      const auto answer = answers_.find(request.path);
      if (answer == answers_.end()) {
        response.status = 404;
        return;
      }
      response.status = answer->second.status;
      response.set_content(answer->second.body, "application/json");
    };
    server_.Get(".*", handle);
    server_.Post(".*", handle);
    port_ = server_.bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_.listen_after_bind(); });
  }
  ~LoopbackPurrlService() {
    server_.stop();
    thread_.join();
  }

  void answer(const std::string& path, Answer answer) {
    const std::lock_guard lock(mutex_);
    answers_[path] = std::move(answer);
  }
  std::vector<SeenRequest> seen() const {
    const std::lock_guard lock(mutex_);
    return seen_;
  }
  NativeServiceOrigin origin() const {
    return NativeServiceOrigin::parse("http://127.0.0.1:" + std::to_string(port_)).value();
  }

 private:
  httplib::Server server_;
  int port_ = 0;
  std::thread thread_;
  mutable std::mutex mutex_;
  std::map<std::string, Answer> answers_;
  std::vector<SeenRequest> seen_;
};

constexpr const char* kToken = "token-1";

struct EndpointCase {
  std::string name;
  std::string path;
  std::string method;
  std::string response;
  // Calls the endpoint; returns an empty string on success with the expected
  // record, otherwise what went wrong.
  std::function<std::string(PurrlAPI&)> call;
  friend void PrintTo(const EndpointCase& c, std::ostream* out) { *out << c.name; }
};

// Empty when the call succeeded and `holds` accepts its record; otherwise the
// error's description or `what` names the record that came back wrong.
template <class T, class Check>
std::string checked(const std::expected<T, NativeAccountError>& result, Check holds, const char* what) {
  if (!result) return result.error().description();
  return holds(*result) ? std::string() : std::string(what);
}

class PurrlStudyClientTest : public ::testing::TestWithParam<EndpointCase> {
 protected:
  LoopbackPurrlService service;
  PurrlAPI api{service.origin()};
};

TEST_P(PurrlStudyClientTest, SendsTheFeaturesAndDecodesTheAnswer) {
  const EndpointCase& c = GetParam();
  service.answer("/api/native/purrl/" + c.path, {200, c.response});
  EXPECT_EQ(c.call(api), "");
  const auto seen = service.seen();
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].method, c.method);
  EXPECT_EQ(seen[0].path, "/api/native/purrl/" + c.path);
  EXPECT_EQ(seen[0].features, "cat-growth,study-stats,daily-sets,exam-countdowns,mock-calendar");
  EXPECT_EQ(seen[0].authorization, std::string("Bearer ") + kToken);
}

TEST_P(PurrlStudyClientTest, UndecodableAnswerIsAnInvalidResponse) {
  const EndpointCase& c = GetParam();
  service.answer("/api/native/purrl/" + c.path, {200, R"({"unexpected": true})"});
  EXPECT_EQ(c.call(api), "invalidResponse");
}

TEST_P(PurrlStudyClientTest, PurrlUnavailableIsWordedForTheUser) {
  const EndpointCase& c = GetParam();
  service.answer("/api/native/purrl/" + c.path, {503, R"({"error": "purrl_unavailable"})"});
  EXPECT_EQ(c.call(api), "service(purrl_unavailable)");
  EXPECT_EQ(api.message(NativeAccountError::service("purrl_unavailable")),
            "Kedine şu anda ulaşılamıyor. Biraz sonra yeniden dene.");
}

INSTANTIATE_TEST_SUITE_P(
    Endpoints, PurrlStudyClientTest,
    ::testing::Values(
        EndpointCase{"stats", "focus/stats", "GET",
                     R"({"now": 800000000, "today": {"day": "2026-05-10", "minutes": 95, "questions": 120},
                         "week": {"start": "2026-05-04", "end": "2026-05-10", "minutes": 95, "questions": 120,
                                  "subjects": [{"subject": "tyt_mat", "minutes": 95, "questions": 120, "runs": 2}]},
                         "heat": {"from": "2026-05-10", "to": "2026-05-10", "days": []}, "mocks": []})",
                     [](PurrlAPI& api) {
                       return checked(api.studyStats(kToken), [](const auto& stats) {
                         return stats.week.subjects.at(0).subject == "tyt_mat" && !stats.exam; }, "stats");
                     }},
        EndpointCase{"dailySets", "focus/daily-sets", "GET",
                     R"({"day": "2026-05-10", "kept": false,
                         "items": [{"subject": "custom", "label": "Deneme", "target": 40, "done": 12, "kept": false}]})",
                     [](PurrlAPI& api) {
                       return checked(api.dailySets(kToken), [](const auto& sets) {
                         return sets.items.at(0).identity() == "custom:deneme"; }, "identity");
                     }},
        EndpointCase{"setDailySets", "focus/daily-sets", "POST",
                     R"({"day": "2026-05-10", "kept": true,
                         "items": [{"subject": "tyt_mat", "target": 40, "done": 40, "kept": true}]})",
                     [](PurrlAPI& api) {
                       return checked(api.setDailySets({{PurrlFocusSubject::tytMat, std::nullopt, 40}}, kToken),
                                      [](const auto& sets) { return sets.kept; }, "kept");
                     }},
        EndpointCase{"countdowns", "focus/countdowns", "GET",
                     R"({"countdowns": [{"exam": "lgs", "day": "2026-06-14", "daysLeft": 35},
                                        {"exam": "other", "label": "KPSS", "day": "2026-09-06", "daysLeft": 119}]})",
                     [](PurrlAPI& api) {
                       const std::vector<PurrlFocusExamCountdown> expected{
                           {PurrlFocusExamKind::lgs, std::nullopt, "2026-06-14", 35},
                           {PurrlFocusExamKind::other, "KPSS", "2026-09-06", 119}};
                       return checked(api.countdowns(kToken), [&](const auto& got) { return got == expected; },
                                      "countdowns");
                     }},
        EndpointCase{"mockCalendar", "focus/mocks", "GET",
                     R"({"now": 800000000, "plans": [], "past": [], "friends": [],
                         "upcoming": [{"planId": "p1", "exam": "lgs_sozel", "day": "2026-05-16", "minute": 600,
                                       "at": 1778914800000}]})",
                     [](PurrlAPI& api) {
                       return checked(api.mockCalendar(kToken), [](const auto& calendar) {
                         const auto& date = calendar.upcoming.at(0);
                         return date.exam == PurrlFocusMockExam::lgsSozel && date.at == 1778914800000; }, "upcoming");
                     }},
        EndpointCase{"cat", "cat", "GET",
                     R"({"name": "Tarçın", "mood": "happy", "reason": "kept_kovi", "petted": false})",
                     [](PurrlAPI& api) {
                       return checked(api.cat(kToken), [](const auto& cat) {
                         return cat.reason == PurrlCatMoodReason::keptKovi && cat.name == "Tarçın"; }, "cat");
                     }}),
    [](const auto& info) { return info.param.name; });

TEST(PurrlStudyClientBodyTest, DailySetTargetsAreSentAsItems) {
  LoopbackPurrlService service;
  PurrlAPI api{service.origin()};
  service.answer("/api/native/purrl/focus/daily-sets", {200, R"({"day": "2026-05-10", "kept": false, "items": []})"});
  ASSERT_TRUE(api.setDailySets({{PurrlFocusSubject::lgsFen, std::nullopt, 20},
                                {PurrlFocusSubject::custom, "Paragraf+", 15}},
                               std::nullopt));
  const auto seen = service.seen();
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].body,
            R"({"items":[{"subject":"lgs_fen","target":20},{"subject":"custom","label":"Paragraf+","target":15}]})");
  EXPECT_EQ(seen[0].authorization, "");
}

}  // namespace
}  // namespace kovi
