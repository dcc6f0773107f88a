// The transport against a real HTTP server on 127.0.0.1.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "KoviKit/native/NativeAccountAPI.h"
#include "KoviKit/native/NativeResponseClassifier.h"
#include "tests/native/LoopbackServer.h"
#include "tests/native/NativeErrorPrinting.h"

namespace kovi {

// What the test service answers with when it works.
struct Greeting {
  std::string name;
};

template <>
struct JsonDecoder<Greeting> {
  static Decoded<Greeting> decode(const JsonView& json) {
    auto name = json.get<std::string>("name");
    if (!name) return std::unexpected(name.error());
    return Greeting{*name};
  }
};

namespace {

using testing::Gate;
using testing::GateOpener;
using testing::LoopbackServer;
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// How the test server delivers a body.
enum class Delivery {
  whole,             // with Content-Length
  chunked,           // without Content-Length
  declaredStalling,  // Content-Length over the limit; 64 KiB, then nothing until the test ends
  chunkedStalling,   // no Content-Length; 192 KiB, then nothing until the test ends
};

struct Reply {
  int status = 200;
  std::string contentType = "application/json";
  httplib::Headers headers;
  std::string body;
  Delivery delivery = Delivery::whole;
};

struct ServerCase {
  std::string name;
  Reply reply;
  std::expected<std::string, NativeAccountError> outcome;  // the greeted name, or the error
};

void PrintTo(const ServerCase& example, std::ostream* out) { *out << example.name; }

constexpr std::size_t kStallAfterDeclared = 64 * 1024;
constexpr std::size_t kStallAfterChunked = 192 * 1024;

void stream(httplib::DataSink& sink, std::size_t bytes, char fill) {
  const std::string piece(16 * 1024, fill);
  for (std::size_t sent = 0; sent < bytes; sent += piece.size()) {
    if (!sink.write(piece.data(), std::min(piece.size(), bytes - sent))) return;
  }
}

void serve(const Reply& reply, Gate& gate, httplib::Response& response) {
  response.status = reply.status;
  for (const auto& [name, value] : reply.headers) response.set_header(name, value);
  switch (reply.delivery) {
    case Delivery::whole:
      response.set_content(reply.body, reply.contentType.c_str());
      return;
    case Delivery::chunked:
      response.set_chunked_content_provider(reply.contentType, [&reply](std::size_t, httplib::DataSink& sink) {
        constexpr std::size_t kChunk = 10'000;
        for (std::size_t at = 0; at < reply.body.size(); at += kChunk) {
          if (!sink.write(reply.body.data() + at, std::min(kChunk, reply.body.size() - at))) return false;
        }
        sink.done();
        return true;
      });
      return;
    case Delivery::declaredStalling:
      response.set_content_provider(4 * kNativeResponseBodyLimit, reply.contentType,
                                    [&reply, &gate](std::size_t, std::size_t, httplib::DataSink& sink) {
                                      sink.write(reply.body.data(), reply.body.size());
                                      stream(sink, kStallAfterDeclared - reply.body.size(), ' ');
                                      gate.waitOpen(10s);
                                      return false;
                                    });
      return;
    case Delivery::chunkedStalling:
      response.set_chunked_content_provider(reply.contentType, [&reply, &gate](std::size_t, httplib::DataSink& sink) {
        sink.write(reply.body.data(), reply.body.size());
        stream(sink, kStallAfterChunked - reply.body.size(), ' ');
        gate.waitOpen(10s);
        return false;
      });
      return;
  }
}

std::string greetingOfSize(std::size_t size) {
  const std::string frame = R"({"name":"Ada","pad":""})";
  return R"({"name":"Ada","pad":")" + std::string(size - frame.size(), 'x') + "\"}";
}

std::expected<std::string, NativeAccountError> greeted(std::string name) { return name; }
std::expected<std::string, NativeAccountError> failed(NativeAccountError error) {
  return std::unexpected(std::move(error));
}

class ServerReplyTest : public ::testing::TestWithParam<ServerCase> {};

TEST_P(ServerReplyTest, ClientReportsWhatTheServerSaid) {
  const ServerCase& example = GetParam();
  Gate gate;
  LoopbackServer server([&](httplib::Server& http) {
    http.Get("/api/native/account/greeting",
             [&](const httplib::Request&, httplib::Response& response) { serve(example.reply, gate, response); });
    // Where the redirect case points: reaching it would be a success.
    http.Get("/api/native/account/elsewhere", [](const httplib::Request&, httplib::Response& response) {
      response.set_content(R"({"name":"Elsewhere"})", "application/json");
    });
  });
  GateOpener opener(gate);
  NativeClientOptions options;
  options.timeout = 5s;
  NativeAccountAPI api(server.serviceOrigin(), std::move(options));

  const auto started = Clock::now();
  const auto result = api.send<Greeting>("/greeting");
  const auto elapsed = Clock::now() - started;

  if (example.outcome) {
    ASSERT_TRUE(result.has_value()) << result.error().description();
    EXPECT_EQ(result->name, *example.outcome);
  } else {
    ASSERT_FALSE(result.has_value()) << "decoded a greeting for " << result->name;
    EXPECT_EQ(result.error(), example.outcome.error());
  }
  // A refused body ends the transfer; it never waits for the stalled rest.
  EXPECT_LT(elapsed, 3s);
}

const httplib::Headers kNoHeaders;

INSTANTIATE_TEST_SUITE_P(
    Statuses, ServerReplyTest,
    ::testing::Values(
        ServerCase{"ok", {200, "application/json", kNoHeaders, R"({"name":"Ada"})"}, greeted("Ada")},
        ServerCase{"ok_charset", {200, "application/json; charset=utf-8", kNoHeaders, R"({"name":"Şule"})"},
                   greeted("Şule")},
        ServerCase{"ok_wrong_content_type", {200, "text/html", kNoHeaders, R"({"name":"Ada"})"},
                   failed(NativeAccountError::unavailable())},
        ServerCase{"ok_not_json", {200, "application/json", kNoHeaders, "<html></html>"},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"ok_wrong_record", {200, "application/json", kNoHeaders, R"({"nom":"Ada"})"},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"rate_limited_header", {429, "text/plain", {{"Retry-After", "120"}}, "slow down"},
                   failed(NativeAccountError::rateLimited(120))},
        ServerCase{"rate_limited_body_wins", {429, "application/json", {{"Retry-After", "120"}}, R"({"retryAfterSeconds":30})"},
                   failed(NativeAccountError::rateLimited(30))},
        ServerCase{"rate_limited_no_wait", {429, "text/plain", kNoHeaders, ""},
                   failed(NativeAccountError::rateLimited(kNativeAssumedRateLimitWait))},
        ServerCase{"service_code", {409, "application/json", kNoHeaders, R"({"error":"accounts_at_capacity"})"},
                   failed(NativeAccountError::service("accounts_at_capacity"))},
        ServerCase{"sign_in_code", {403, "application/json", kNoHeaders, R"({"error":"sign_in_required"})"},
                   failed(NativeAccountError::signInRequired())},
        ServerCase{"unauthorized", {401, "text/plain", kNoHeaders, ""}, failed(NativeAccountError::signInRequired())},
        ServerCase{"unauthorized_with_code", {401, "application/json", kNoHeaders, R"({"error":"expired_challenge"})"},
                   failed(NativeAccountError::service("expired_challenge"))},
        ServerCase{"server_error_page", {502, "text/html", kNoHeaders, "<h1>Bad gateway</h1>"},
                   failed(NativeAccountError::unavailable())},
        ServerCase{"server_error_bad_code", {500, "application/json", kNoHeaders, R"({"error":"Bad Code"})"},
                   failed(NativeAccountError::unavailable())},
        ServerCase{"redirect_not_followed", {302, "text/plain", {{"Location", "/api/native/account/elsewhere"}}, ""},
                   failed(NativeAccountError::unavailable())}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    BodyLimit, ServerReplyTest,
    ::testing::Values(
        ServerCase{"at_limit_chunked",
                   {200, "application/json", kNoHeaders, greetingOfSize(kNativeResponseBodyLimit), Delivery::chunked},
                   greeted("Ada")},
        ServerCase{"past_limit_chunked",
                   {200, "application/json", kNoHeaders, greetingOfSize(kNativeResponseBodyLimit + 1), Delivery::chunked},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"past_limit_declared",
                   {200, "application/json", kNoHeaders, greetingOfSize(kNativeResponseBodyLimit + 1)},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"endless_declared",
                   {200, "application/json", kNoHeaders, R"({"name":"Ada","pad":")", Delivery::declaredStalling},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"endless_chunked",
                   {200, "application/json", kNoHeaders, R"({"name":"Ada","pad":")", Delivery::chunkedStalling},
                   failed(NativeAccountError::invalidResponse())},
        ServerCase{"endless_rate_limit_keeps_header",
                   {429, "application/json", {{"Retry-After", "45"}}, R"({"retryAfterSeconds":5,"pad":")",
                    Delivery::chunkedStalling},
                   failed(NativeAccountError::rateLimited(45))},
        ServerCase{"endless_error_code_ignored",
                   {500, "application/json", kNoHeaders, R"({"error":"internal_error","pad":")", Delivery::chunkedStalling},
                   failed(NativeAccountError::unavailable())},
        ServerCase{"endless_unauthorized",
                   {401, "application/json", kNoHeaders, R"({"error":"internal_error","pad":")", Delivery::declaredStalling},
                   failed(NativeAccountError::signInRequired())}),
    [](const auto& info) { return info.param.name; });

std::string httpDate(std::chrono::system_clock::time_point when) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  char text[64];
  std::snprintf(text, sizeof text, "%s, %02d %s %04d %02d:%02d:%02d GMT", kDays[utc.tm_wday], utc.tm_mday,
                kMonths[utc.tm_mon], utc.tm_year + 1900, utc.tm_hour, utc.tm_min, utc.tm_sec);
  return text;
}

TEST(NativeServiceClientTest, RateLimitWithAnHttpDateWaitsUntilThatDate) {
  const std::string date = httpDate(std::chrono::system_clock::now() + 300s);
  LoopbackServer server([&](httplib::Server& http) {
    http.Get("/api/native/account/greeting", [&](const httplib::Request&, httplib::Response& response) {
      response.status = 429;
      response.set_header("Retry-After", date);
    });
  });
  NativeAccountAPI api(server.serviceOrigin());
  const auto result = api.send<Greeting>("/greeting");
  ASSERT_FALSE(result.has_value());
  ASSERT_EQ(result.error().kind(), NativeAccountError::Case::rateLimited) << result.error().description() << " for " << date;
  EXPECT_GE(*result.error().retryAfterSeconds(), 298);
  EXPECT_LE(*result.error().retryAfterSeconds(), 301);
  EXPECT_EQ(api.message(result.error()), "Şu an çok fazla istek var. 5 dakika sonra yeniden dene.");
}

struct Received {
  std::string method;
  std::string path;
  httplib::Headers headers;
  std::string body;
  int remotePort = 0;
};

// A server that answers {"name":"Ada"} to everything under the account area
// and keeps what it received.
class RecordingServer {
 public:
  RecordingServer()
      : server_([this](httplib::Server& http) {
          const auto record = [this](const httplib::Request& request, httplib::Response& response) {
            {
              std::lock_guard lock(mutex_);
              received_.push_back({request.method, request.path, request.headers, request.body, request.remote_port});
            }
            response.set_content(R"({"name":"Ada","seen":2,"after":1})", "application/json");
          };
          http.Get("/api/native/.*", record);
          http.Post("/api/native/.*", record);
        }) {}

  NativeServiceOrigin origin() const { return server_.serviceOrigin(); }
  std::vector<Received> received() {
    std::lock_guard lock(mutex_);
    return received_;
  }

 private:
  std::mutex mutex_;
  std::vector<Received> received_;
  LoopbackServer server_;
};

std::string header(const Received& request, const std::string& name) {
  const auto found = request.headers.find(name);
  return found != request.headers.end() ? found->second : "<absent>";
}

TEST(NativeServiceClientTest, SendsTheHeadersTheServiceExpects) {
  RecordingServer server;
  NativeClientOptions options;
  options.extraHeaders = {{"X-Purrl-Features", "cat,study"}};
  NativeAccountAPI api(server.origin(), std::move(options));

  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-123").has_value());
  ASSERT_TRUE(api.send<Greeting>("session", R"({"passkey":"p"})").has_value());
  // The session reuses header lines between requests; a new token must still
  // reach the server, and the same token twice must too.
  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-456").has_value());
  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-456").has_value());
  ASSERT_TRUE(api.send<Greeting>("/me").has_value());

  const auto received = server.received();
  struct Expected {
    std::string method, path, contentType, authorization, body;
  };
  const Expected expected[] = {
      {"GET", "/api/native/account/me", "<absent>", "Bearer token-123", ""},
      {"POST", "/api/native/account/session", "application/json", "<absent>", R"({"passkey":"p"})"},
      {"GET", "/api/native/account/me", "<absent>", "Bearer token-456", ""},
      {"GET", "/api/native/account/me", "<absent>", "Bearer token-456", ""},
      {"GET", "/api/native/account/me", "<absent>", "<absent>", ""},
  };
  ASSERT_EQ(received.size(), std::size(expected));
  for (std::size_t index = 0; index < received.size(); ++index) {
    SCOPED_TRACE(index);
    const Received& request = received[index];
    EXPECT_EQ(request.method, expected[index].method);
    EXPECT_EQ(request.path, expected[index].path);
    EXPECT_EQ(request.body, expected[index].body);
    EXPECT_EQ(header(request, "Accept"), "application/json");
    EXPECT_EQ(header(request, "Content-Type"), expected[index].contentType);
    EXPECT_EQ(header(request, "Authorization"), expected[index].authorization);
    EXPECT_EQ(header(request, "Cache-Control"), "no-cache");
    EXPECT_EQ(header(request, "X-Purrl-Features"), "cat,study");
  }
}

TEST(NativeServiceClientTest, EndpointIsTheAreaUnderTheOrigin) {
  const auto origin = NativeServiceOrigin::parse("https://kovi.example/");
  ASSERT_TRUE(origin.has_value());
  EXPECT_EQ(NativeAccountAPI(*origin).endpoint(), "https://kovi.example/api/native/account");
  const NativeErrorTable evidence{"v6/evidence", {}};
  EXPECT_EQ(NativeServiceClient(*origin, evidence).endpoint(), "https://kovi.example/api/native/v6/evidence");
}

TEST(NativeServiceClientTest, ReusesOneConnectionForSuccessiveCalls) {
  RecordingServer server;
  NativeAccountAPI api(server.origin());
  for (int call = 0; call < 3; ++call) ASSERT_TRUE(api.send<Greeting>("/me").has_value());
  ASSERT_TRUE(api.send<Greeting>("/me", R"({})").has_value());
  const auto received = server.received();
  ASSERT_EQ(received.size(), 4u);
  for (const Received& request : received) EXPECT_EQ(request.remotePort, received.front().remotePort);
}

TEST(NativeServiceClientTest, ThreadsShareOneClient) {
  RecordingServer server;
  NativeAccountAPI api(server.origin());
  std::atomic<int> successes = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int call = 0; call < 10; ++call) successes += api.send<Greeting>("/me").has_value() ? 1 : 0;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(successes.load(), 40);
  EXPECT_EQ(server.received().size(), 40u);
}

TEST(NativeServiceClientTest, RawJsonKeepsTheServiceKeyOrder) {
  RecordingServer server;
  NativeAccountAPI api(server.origin());
  const auto document = api.sendJson("/me");
  ASSERT_TRUE(document.has_value()) << document.error().description();
  EXPECT_EQ(document->dump(), R"({"name":"Ada","seen":2,"after":1})");
}

TEST(NativeServiceClientTest, ServerSlowerThanTheTimeOutIsUnavailable) {
  Gate gate;
  LoopbackServer server([&](httplib::Server& http) {
    http.Get("/api/native/account/greeting", [&](const httplib::Request&, httplib::Response& response) {
      gate.waitOpen(10s);
      response.set_content(R"({"name":"Ada"})", "application/json");
    });
  });
  GateOpener opener(gate);
  std::vector<std::string> failures;
  NativeClientOptions options;
  options.timeout = 300ms;
  options.transportFailureObserver = [&](const NativeTransportFailure& failure) { failures.push_back(failure.reason); };
  NativeAccountAPI api(server.serviceOrigin(), std::move(options));

  const auto started = Clock::now();
  const auto result = api.send<Greeting>("/greeting");
  const auto elapsed = Clock::now() - started;

  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), NativeAccountError::unavailable());
  EXPECT_GE(elapsed, 250ms);
  EXPECT_LT(elapsed, 3s);
  ASSERT_EQ(failures.size(), 1u);
  EXPECT_NE(failures.front().find("Timeout"), std::string::npos) << failures.front();
}

TEST(NativeServiceClientTest, RefusedConnectionIsUnavailable) {
  NativeServiceOrigin origin = [] {
    LoopbackServer closed([](httplib::Server&) {});
    return closed.serviceOrigin();
  }();
  std::vector<std::string> failures;
  NativeClientOptions options;
  options.transportFailureObserver = [&](const NativeTransportFailure& failure) { failures.push_back(failure.reason); };
  NativeAccountAPI api(origin, std::move(options));

  const auto result = api.send<Greeting>("/greeting");
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), NativeAccountError::unavailable());
  EXPECT_EQ(failures.size(), 1u);
}

}  // namespace
}  // namespace kovi
