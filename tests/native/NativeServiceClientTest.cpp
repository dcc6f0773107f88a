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
#include "tests/support/LoopbackServer.h"
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
  whole,     // with Content-Length
  chunked,   // without Content-Length
  stalling,  // without Content-Length; 192 KiB, then nothing until the test ends
};

struct Reply {
  int status = 200;
  std::string body;
  httplib::Headers headers = {};
  Delivery delivery = Delivery::whole;
  std::string contentType = "application/json";
};

Reply text(int status, std::string contentType, std::string body, httplib::Headers headers = {}) {
  return {status, std::move(body), std::move(headers), Delivery::whole, std::move(contentType)};
}

struct ServerCase {
  std::string name;
  Reply reply;
  std::expected<std::string, NativeAccountError> outcome;  // the greeted name, or the error
};

void PrintTo(const ServerCase& example, std::ostream* out) { *out << example.name; }

void serve(const Reply& reply, Gate& gate, httplib::Response& response) {
  response.status = reply.status;
  for (const auto& [name, value] : reply.headers) response.set_header(name, value);
  const std::string& body = reply.body;
  if (reply.delivery == Delivery::whole) return response.set_content(body, reply.contentType.c_str());
  response.set_chunked_content_provider(reply.contentType, [&](std::size_t, httplib::DataSink& sink) {
    const bool stalls = reply.delivery == Delivery::stalling;
    const std::string& data = stalls ? body + std::string(192 * 1024 - body.size(), ' ') : body;
    constexpr std::size_t kChunk = 10'000;
    for (std::size_t at = 0; at < data.size(); at += kChunk) {
      if (!sink.write(data.data() + at, std::min(kChunk, data.size() - at))) return false;
    }
    if (stalls) {
      gate.waitOpen(10s);
      return false;
    }
    sink.done();
    return true;
  });
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

const std::string kOpenGreeting = R"({"name":"Ada","pad":")";
const std::size_t kLimit = kNativeResponseBodyLimit;
const auto kUnavailable = failed(NativeAccountError::unavailable());
const auto kInvalid = failed(NativeAccountError::invalidResponse());

INSTANTIATE_TEST_SUITE_P(
    Replies, ServerReplyTest,
    ::testing::Values(
        ServerCase{"ok", {200, R"({"name":"Ada"})"}, greeted("Ada")},
        ServerCase{"ok_charset", text(200, "application/json; charset=utf-8", R"({"name":"Şule"})"), greeted("Şule")},
        ServerCase{"ok_wrong_content_type", text(200, "text/html", R"({"name":"Ada"})"), kUnavailable},
        ServerCase{"ok_not_json", {200, "<html></html>"}, kInvalid},
        ServerCase{"ok_wrong_record", {200, R"({"nom":"Ada"})"}, kInvalid},
        ServerCase{"rate_limited_header", text(429, "text/plain", "slow down", {{"Retry-After", "120"}}),
                   failed(NativeAccountError::rateLimited(120))},
        ServerCase{"rate_limited_body_wins", {429, R"({"retryAfterSeconds":30})", {{"Retry-After", "120"}}},
                   failed(NativeAccountError::rateLimited(30))},
        ServerCase{"rate_limited_no_wait", text(429, "text/plain", ""),
                   failed(NativeAccountError::rateLimited(kNativeAssumedRateLimitWait))},
        ServerCase{"service_code", {409, R"({"error":"accounts_at_capacity"})"},
                   failed(NativeAccountError::service("accounts_at_capacity"))},
        ServerCase{"sign_in_code", {403, R"({"error":"sign_in_required"})"}, failed(NativeAccountError::signInRequired())},
        ServerCase{"unauthorized", text(401, "text/plain", ""), failed(NativeAccountError::signInRequired())},
        ServerCase{"unauthorized_with_code", {401, R"({"error":"expired_challenge"})"},
                   failed(NativeAccountError::service("expired_challenge"))},
        ServerCase{"server_error_page", text(502, "text/html", "<h1>Bad gateway</h1>"), kUnavailable},
        ServerCase{"redirect_not_followed", text(302, "text/plain", "", {{"Location", "/api/native/account/elsewhere"}}),
                   kUnavailable},
        ServerCase{"at_limit_chunked", {200, greetingOfSize(kLimit), {}, Delivery::chunked}, greeted("Ada")},
        ServerCase{"past_limit_chunked", {200, greetingOfSize(kLimit + 1), {}, Delivery::chunked}, kInvalid},
        ServerCase{"past_limit_declared", {200, greetingOfSize(kLimit + 1)}, kInvalid},
        ServerCase{"endless", {200, kOpenGreeting, {}, Delivery::stalling}, kInvalid},
        ServerCase{"endless_rate_limit_keeps_header",
                   {429, R"({"retryAfterSeconds":5,"pad":")", {{"Retry-After", "45"}}, Delivery::stalling},
                   failed(NativeAccountError::rateLimited(45))}),
    [](const auto& info) { return info.param.name; });

TEST(NativeServiceClientTest, RateLimitWithAnHttpDateWaitsUntilThatDate) {
  const std::time_t inFiveMinutes = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() + 300s);
  std::tm utc{};
  gmtime_r(&inFiveMinutes, &utc);
  char date[64];
  std::strftime(date, sizeof date, "%a, %d %b %Y %H:%M:%S GMT", &utc);
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
  httplib::Headers headers = {};
  std::string body;
  int remotePort = 0;
};

// A server that answers the same record to everything under the native area
// and keeps what it received.
class RecordingServerTest : public ::testing::Test {
 protected:
  std::vector<Received> received() {
    std::lock_guard lock(mutex_);
    return received_;
  }

  std::mutex mutex_;
  std::vector<Received> received_;
  LoopbackServer server_{[this](httplib::Server& http) {
    const auto record = [this](const httplib::Request& request, httplib::Response& response) {
      {
        std::lock_guard lock(mutex_);
        received_.push_back({request.method, request.path, request.headers, request.body, request.remote_port});
      }
      response.set_content(R"({"name":"Ada","seen":2,"after":1})", "application/json");
    };
    http.Get("/api/native/.*", record);
    http.Post("/api/native/.*", record);
  }};
};

std::string header(const Received& request, const std::string& name) {
  const auto found = request.headers.find(name);
  return found != request.headers.end() ? found->second : "<absent>";
}

TEST_F(RecordingServerTest, SendsTheHeadersTheServiceExpectsOverOneConnection) {
  NativeClientOptions options;
  options.extraHeaders = {{"X-Purrl-Features", "cat,study"}};
  NativeAccountAPI api(server_.serviceOrigin(), std::move(options));

  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-123").has_value());
  ASSERT_TRUE(api.send<Greeting>("session", R"({"passkey":"p"})").has_value());
  // The session reuses header lines between requests; a new token must still
  // reach the server, and the same token twice must too.
  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-456").has_value());
  ASSERT_TRUE(api.send<Greeting>("/me", std::nullopt, "token-456").has_value());
  // Raw JSON keeps the service's key order.
  const auto document = api.sendJson("/me");
  ASSERT_TRUE(document.has_value()) << document.error().description();
  EXPECT_EQ(document->dump(), R"({"name":"Ada","seen":2,"after":1})");

  const auto requests = received();
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
  ASSERT_EQ(requests.size(), std::size(expected));
  for (std::size_t index = 0; index < requests.size(); ++index) {
    SCOPED_TRACE(index);
    const Received& request = requests[index];
    EXPECT_EQ(request.method, expected[index].method);
    EXPECT_EQ(request.path, expected[index].path);
    EXPECT_EQ(request.body, expected[index].body);
    EXPECT_EQ(header(request, "Accept"), "application/json");
    EXPECT_EQ(header(request, "Content-Type"), expected[index].contentType);
    EXPECT_EQ(header(request, "Authorization"), expected[index].authorization);
    EXPECT_EQ(header(request, "Cache-Control"), "no-cache");
    EXPECT_EQ(header(request, "X-Purrl-Features"), "cat,study");
    EXPECT_EQ(request.remotePort, requests.front().remotePort) << "a new connection for this call";
  }
}

TEST_F(RecordingServerTest, ThreadsShareOneClient) {
  NativeAccountAPI api(server_.serviceOrigin());
  std::atomic<int> successes = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int call = 0; call < 10; ++call) successes += api.send<Greeting>("/me").has_value() ? 1 : 0;
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(successes.load(), 40);
  EXPECT_EQ(received().size(), 40u);
}

TEST(NativeServiceClientTest, EndpointIsTheAreaUnderTheOrigin) {
  const auto origin = NativeServiceOrigin::parse("https://kovi.example/");
  ASSERT_TRUE(origin.has_value());
  EXPECT_EQ(NativeAccountAPI(*origin).endpoint(), "https://kovi.example/api/native/account");
  const NativeErrorTable evidence{"v6/evidence", {}};
  EXPECT_EQ(NativeServiceClient(*origin, evidence).endpoint(), "https://kovi.example/api/native/v6/evidence");
}

// Options that keep the reason of every transport failure.
NativeClientOptions observing(std::vector<std::string>& failures, std::chrono::milliseconds timeout) {
  NativeClientOptions options;
  options.timeout = timeout;
  options.transportFailureObserver = [&](const NativeTransportFailure& failure) { failures.push_back(failure.reason); };
  return options;
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
  NativeAccountAPI api(server.serviceOrigin(), observing(failures, 300ms));

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

// A service may send a header libcurl will not hold; that is not a lack of
// memory, and the reason says so.
TEST(NativeServiceClientTest, OversizedHeaderIsUnavailableAndNamedAsSuch) {
  LoopbackServer server([&](httplib::Server& http) {
    http.Get("/api/native/account/greeting", [&](const httplib::Request&, httplib::Response& response) {
      response.status = 429;
      response.set_header("Retry-After", std::string(200'000, '9'));
    });
  });
  std::vector<std::string> failures;
  NativeAccountAPI api(server.serviceOrigin(), observing(failures, 5s));
  const auto result = api.send<Greeting>("/greeting");
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), NativeAccountError::unavailable());
  EXPECT_EQ(failures, std::vector<std::string>{"a response header is larger than the 100 KB libcurl accepts"});
}

TEST(NativeServiceClientTest, RefusedConnectionIsUnavailable) {
  const NativeServiceOrigin origin = LoopbackServer([](httplib::Server&) {}).serviceOrigin();
  std::vector<std::string> failures;
  NativeAccountAPI api(origin, observing(failures, 5s));
  const auto result = api.send<Greeting>("/greeting");
  ASSERT_FALSE(result.has_value());
  EXPECT_EQ(result.error(), NativeAccountError::unavailable());
  EXPECT_EQ(failures.size(), 1u);
}

}  // namespace
}  // namespace kovi
