// `kovi call` against a real loopback server, through the built binary.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/native/KoviProcess.h"
#include "tests/native/LoopbackServer.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using nlohmann::ordered_json;
using testing::LoopbackServer;
using testing::runKovi;
using testing::ScopedEnvironment;

void reply(httplib::Response& response, int status, const std::string& body, const char* type = "application/json") {
  response.status = status;
  response.set_content(body, type);
}

// The service as `kovi call` meets it: one route per kind of answer.
void routes(httplib::Server& http) {
  http.Get("/api/native/account/me", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 200, R"({"name":"Ada","plan":"free","age":3})");
  });
  http.Post("/api/native/account/echo", [](const httplib::Request& request, httplib::Response& response) {
    ordered_json echo;
    echo["method"] = request.method;
    echo["contentType"] = request.get_header_value("Content-Type");
    echo["authorization"] = request.get_header_value("Authorization");
    echo["body"] = ordered_json::parse(request.body);
    reply(response, 200, echo.dump());
  });
  http.Get("/api/native/account/whoami", [](const httplib::Request& request, httplib::Response& response) {
    reply(response, 200, ordered_json{{"authorization", request.get_header_value("Authorization")}}.dump());
  });
  http.Get("/api/native/account/busy", [](const httplib::Request&, httplib::Response& response) {
    response.set_header("Retry-After", "90");
    reply(response, 429, "busy", "text/plain");
  });
  http.Get("/api/native/account/full", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 409, R"({"error":"accounts_at_capacity"})");
  });
  http.Get("/api/native/financial/payout", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 409, R"({"error":"accounts_at_capacity"})");
  });
  http.Get("/api/native/account/gone", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 401, "", "text/plain");
  });
  http.Get("/api/native/account/page", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 200, "<h1>hello</h1>", "text/html");
  });
  http.Get("/api/native/account/garbled", [](const httplib::Request&, httplib::Response& response) {
    reply(response, 200, "{\"name\":");
  });
}

ordered_json failure(std::string error, std::optional<std::string> code, std::optional<long long> wait,
                     std::string message) {
  ordered_json object;
  object["error"] = error;
  object["code"] = code ? ordered_json(*code) : ordered_json(nullptr);
  object["retryAfterSeconds"] = wait ? ordered_json(*wait) : ordered_json(nullptr);
  object["message"] = message;
  return object;
}

struct CallCase {
  std::string name;
  std::vector<std::string> arguments;
  int exitStatus;
  ordered_json out;
};

void PrintTo(const CallCase& example, std::ostream* out) { *out << example.name; }

class CallCommandTest : public ::testing::TestWithParam<CallCase> {
 protected:
  LoopbackServer server_{routes};
  ScopedEnvironment origin_{"KOVI_SERVICE_ORIGIN", server_.origin()};
  ScopedEnvironment token_{"KOVI_SERVICE_TOKEN", std::nullopt};
};

TEST_P(CallCommandTest, PrintsTheAnswerOrTheError) {
  const CallCase& example = GetParam();
  const auto run = runKovi(example.arguments);
  EXPECT_EQ(run.exitStatus, example.exitStatus) << run.err;
  const auto printed = ordered_json::parse(run.out, nullptr, false);
  ASSERT_FALSE(printed.is_discarded()) << "not one JSON document: " << run.out;
  // Compared as text so the key order counts too.
  EXPECT_EQ(printed.dump(), example.out.dump());
}

INSTANTIATE_TEST_SUITE_P(
    Answers, CallCommandTest,
    ::testing::Values(
        CallCase{"get", {"call", "account", "/me"}, 0, ordered_json::parse(R"({"name":"Ada","plan":"free","age":3})")},
        CallCase{"path_without_slash", {"call", "account", "me"}, 0,
                 ordered_json::parse(R"({"name":"Ada","plan":"free","age":3})")},
        CallCase{"post_with_token",
                 {"call", "account", "/echo", "--body", R"({"device":"mac"})", "--token", "t-1"},
                 0,
                 ordered_json::parse(R"({"method":"POST","contentType":"application/json",
                                         "authorization":"Bearer t-1","body":{"device":"mac"}})")},
        CallCase{"rate_limited", {"call", "account", "/busy"}, 1,
                 failure("rateLimited", std::nullopt, 90, "Şu an çok fazla istek var. 2 dakika sonra yeniden dene.")},
        CallCase{"service_code", {"call", "account", "/full"}, 1,
                 failure("service", "accounts_at_capacity", std::nullopt,
                         "Kovi şu anda yeni hesap açmaya kapalı. Kontenjan açıldığında yeniden deneyebilirsin.")},
        CallCase{"area_without_table", {"call", "financial", "/payout"}, 1,
                 failure("service", "accounts_at_capacity", std::nullopt, "Şu anda tamamlanamadı. Yenileyip tekrar dene.")},
        CallCase{"sign_in", {"call", "account", "/gone"}, 1,
                 failure("signInRequired", std::nullopt, std::nullopt, "Geçiş anahtarınla yeniden giriş yap.")},
        CallCase{"not_found", {"call", "account", "/nowhere"}, 1,
                 failure("unavailable", std::nullopt, std::nullopt,
                         "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene.")},
        CallCase{"html_page", {"call", "account", "/page"}, 1,
                 failure("unavailable", std::nullopt, std::nullopt,
                         "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene.")},
        CallCase{"garbled_json", {"call", "account", "/garbled"}, 1,
                 failure("invalidResponse", std::nullopt, std::nullopt,
                         "Bilgiler doğrulanamadı. Yenileyip tekrar dene.")}),
    [](const auto& info) { return info.param.name; });

TEST_F(CallCommandTest, TokenComesFromTheEnvironmentToo) {
  ScopedEnvironment token("KOVI_SERVICE_TOKEN", "from-env");
  const auto run = runKovi({"call", "account", "/whoami"});
  EXPECT_EQ(run.exitStatus, 0) << run.err;
  EXPECT_EQ(ordered_json::parse(run.out, nullptr, false), ordered_json({{"authorization", "Bearer from-env"}}));
}

TEST_F(CallCommandTest, BodyComesFromAFile) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.write("body.json", R"({"from":"file"})");
  const auto run = runKovi({"call", "account", "/echo", "--body", "@" + file.string()});
  EXPECT_EQ(run.exitStatus, 0) << run.err;
  const auto printed = ordered_json::parse(run.out, nullptr, false);
  ASSERT_TRUE(printed.is_object()) << run.out;
  EXPECT_EQ(printed["body"], ordered_json({{"from", "file"}}));
}

struct RefusalCase {
  std::string name;
  std::optional<std::string> origin;  // KOVI_SERVICE_ORIGIN; the test server's when "<server>"
  std::vector<std::string> arguments;
  std::string errPart;
};

void PrintTo(const RefusalCase& example, std::ostream* out) { *out << example.name; }

class CallRefusalTest : public ::testing::TestWithParam<RefusalCase> {};

// Requests that must not be sent at all: exit 2, nothing on standard output.
TEST_P(CallRefusalTest, RefusesBeforeSending) {
  const RefusalCase& example = GetParam();
  int requests = 0;
  LoopbackServer server([&](httplib::Server& http) {
    http.set_pre_routing_handler([&](const httplib::Request&, httplib::Response&) {
      ++requests;
      return httplib::Server::HandlerResponse::Unhandled;
    });
  });
  const std::optional<std::string> origin =
      example.origin == "<server>" ? std::optional(server.origin()) : example.origin;
  ScopedEnvironment environment("KOVI_SERVICE_ORIGIN", origin);
  const auto run = runKovi(example.arguments);
  EXPECT_EQ(run.exitStatus, 2) << run.out;
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find(example.errPart), std::string::npos) << run.err;
  EXPECT_EQ(requests, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Refusals, CallRefusalTest,
    ::testing::Values(
        RefusalCase{"origin_unset", std::nullopt, {"call", "account", "/me"}, "KOVI_SERVICE_ORIGIN is not set"},
        RefusalCase{"origin_plain_http", "http://kovi.example", {"call", "account", "/me"}, "must use https://"},
        RefusalCase{"origin_with_path", "https://kovi.example/api", {"call", "account", "/me"}, "without a path"},
        RefusalCase{"body_not_json", "<server>", {"call", "account", "/echo", "--body", "{oops"}, "not valid JSON"},
        RefusalCase{"body_file_missing", "<server>", {"call", "account", "/echo", "--body", "@/no/such/file"},
                    "no such file"},
        RefusalCase{"area_malformed", "<server>", {"call", "Account/../x", "/me"}, "AREA"},
        RefusalCase{"path_with_space", "<server>", {"call", "account", "/m e"}, "PATH"}),
    [](const auto& info) { return info.param.name; });

TEST(CallCommandConnectionTest, UnreachableServiceIsUnavailable) {
  const std::string origin = [] {
    LoopbackServer closed([](httplib::Server&) {});
    return closed.origin();
  }();
  ScopedEnvironment environment("KOVI_SERVICE_ORIGIN", origin);
  const auto run = runKovi({"call", "account", "/me"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(ordered_json::parse(run.out, nullptr, false).dump(),
            failure("unavailable", std::nullopt, std::nullopt, "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene.")
                .dump());
  EXPECT_NE(run.err.find("no response"), std::string::npos) << run.err;
}

}  // namespace
}  // namespace kovi
