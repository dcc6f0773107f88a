// The transport against a real HTTP server on 127.0.0.1.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
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

using Outcome = std::expected<std::string, NativeAccountError>;  // the greeted name, or the error

Outcome failed(NativeAccountError error) { return std::unexpected(std::move(error)); }

// What the transport adds to the classification: real headers and bodies,
// charsets, redirects, read limits and bodies that never end.
TEST(NativeServiceClientTest, ReportsWhatTheServerSaid) {
  const std::string openGreeting = R"({"name":"Ada","pad":")";
  const std::size_t limit = kNativeResponseBodyLimit;
  const auto invalid = failed(NativeAccountError::invalidResponse());
  const struct {
    std::string name;
    Reply reply;
    Outcome outcome;
  } cases[] = {
      {"ok", {200, R"({"name":"Ada"})"}, "Ada"},
      {"ok_charset", text(200, "application/json; charset=utf-8", R"({"name":"Şule"})"), "Şule"},
      {"ok_not_json", {200, "<html></html>"}, invalid},
      {"rate_limited_header", text(429, "text/plain", "slow down", {{"Retry-After", "120"}}),
       failed(NativeAccountError::rateLimited(120))},
      {"redirect_not_followed", text(302, "text/plain", "", {{"Location", "/api/native/account/elsewhere"}}),
       failed(NativeAccountError::unavailable())},
      {"at_limit_chunked", {200, greetingOfSize(limit), {}, Delivery::chunked}, "Ada"},
      {"past_limit_chunked", {200, greetingOfSize(limit + 1), {}, Delivery::chunked}, invalid},
      {"past_limit_declared", {200, greetingOfSize(limit + 1)}, invalid},
      {"endless", {200, openGreeting, {}, Delivery::stalling}, invalid},
      {"endless_rate_limit_keeps_header",
       {429, R"({"retryAfterSeconds":5,"pad":")", {{"Retry-After", "45"}}, Delivery::stalling},
       failed(NativeAccountError::rateLimited(45))},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Gate gate;
    LoopbackServer server([&](httplib::Server& http) {
      http.Get("/api/native/account/greeting",
               [&](const httplib::Request&, httplib::Response& response) { serve(c.reply, gate, response); });
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
    EXPECT_EQ(result ? Outcome(result->name) : failed(result.error()), c.outcome);
    // A refused body ends the transfer; it never waits for the stalled rest.
    EXPECT_LT(Clock::now() - started, 3s);
  }
}

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

// A server that answers the same record on two paths and keeps what it received.
class RecordingServerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* path : {"/api/native/account/me", "/api/native/account/session"}) {
      server_.answer(path, 200, R"({"name":"Ada","seen":2,"after":1})");
    }
  }

  testing::RecordingServer server_;
};

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

  const auto requests = server_.takeReceived();
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
    const testing::ReceivedRequest& request = requests[index];
    const Expected& e = expected[index];
    EXPECT_EQ(std::tie(request.method, request.path, request.body), std::tie(e.method, e.path, e.body));
    EXPECT_EQ(request.header("Content-Type"), e.contentType);
    EXPECT_EQ(request.header("Authorization"), e.authorization);
    EXPECT_EQ(request.header("Accept"), "application/json");
    EXPECT_EQ(request.header("Cache-Control"), "no-cache");
    EXPECT_EQ(request.header("X-Purrl-Features"), "cat,study");
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
  EXPECT_EQ(server_.takeReceived().size(), 40u);
}

// Each transport failure is unavailable to the caller, and the observer hears
// why: a server slower than the time-out, a header libcurl will not hold (not
// a lack of memory), a port nobody listens on.
TEST(NativeServiceClientTest, TransportFailuresAreUnavailableAndNamed) {
  const NativeServiceOrigin closedPort = LoopbackServer([](httplib::Server&) {}).serviceOrigin();
  const struct {
    std::string name;
    std::function<void(httplib::Response&, Gate&)> reply;  // none: nobody listens
    std::string reason;
  } cases[] = {
      {"slow", [](httplib::Response&, Gate& gate) { gate.waitOpen(10s); }, "Timeout"},
      {"oversized_header",
       [](httplib::Response& response, Gate&) {
         response.status = 429;
         response.set_header("Retry-After", std::string(200'000, '9'));
       },
       "a response header is larger than the 100 KB libcurl accepts"},
      {"refused", nullptr, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Gate gate;
    LoopbackServer server([&](httplib::Server& http) {
      http.Get("/api/native/account/greeting",
               [&](const httplib::Request&, httplib::Response& response) { c.reply(response, gate); });
    });
    GateOpener opener(gate);
    std::vector<std::string> failures;
    NativeClientOptions options;
    options.timeout = 300ms;
    options.transportFailureObserver = [&](const NativeTransportFailure& failure) { failures.push_back(failure.reason); };
    NativeAccountAPI api(c.reply ? server.serviceOrigin() : closedPort, std::move(options));

    const auto started = Clock::now();
    const auto result = api.send<Greeting>("/greeting");
    EXPECT_LT(Clock::now() - started, 3s);
    ASSERT_FALSE(result.has_value());
    EXPECT_EQ(result.error(), NativeAccountError::unavailable());
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_NE(failures.front().find(c.reason), std::string::npos) << failures.front();
  }
}

}  // namespace
}  // namespace kovi
