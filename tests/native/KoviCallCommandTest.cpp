// `kovi call` against a real loopback server, through the built binary.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/KoviProcess.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using nlohmann::ordered_json;
using testing::LoopbackServer;
using testing::runKovi;
using testing::ScopedEnvironment;

const std::string kMe = R"({"name":"Ada","plan":"free","age":3})";

// The service as `kovi call` meets it: one route per kind of answer.
void routes(httplib::Server& http) {
  struct Canned {
    std::string path;
    int status;
    std::string body;
    const char* type = "application/json";
    httplib::Headers headers = {};
  };
  const Canned canned[] = {
      {"/api/native/account/me", 200, kMe},
      {"/api/native/account/busy", 429, "busy", "text/plain", {{"Retry-After", "90"}}},
      {"/api/native/account/full", 409, R"({"error":"accounts_at_capacity"})"},
      {"/api/native/financial/payout", 409, R"({"error":"accounts_at_capacity"})"},
      {"/api/native/account/gone", 401, "", "text/plain"},
      {"/api/native/account/garbled", 200, "{\"name\":"},
  };
  for (const Canned& answer : canned) {
    http.Get(answer.path, [answer](const httplib::Request&, httplib::Response& response) {
      response.status = answer.status;
      response.headers = answer.headers;
      response.set_content(answer.body, answer.type);
    });
  }
  http.Post("/api/native/account/echo", [](const httplib::Request& request, httplib::Response& response) {
    const ordered_json echo{{"method", request.method},
                            {"contentType", request.get_header_value("Content-Type")},
                            {"authorization", request.get_header_value("Authorization")},
                            {"body", ordered_json::parse(request.body)}};
    response.set_content(echo.dump(), "application/json");
  });
}

ordered_json failure(const std::string& error, const ordered_json& code, const ordered_json& wait,
                     const std::string& message) {
  return {{"error", error}, {"code", code}, {"retryAfterSeconds", wait}, {"message", message}};
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
        CallCase{"get", {"call", "account", "/me"}, 0, ordered_json::parse(kMe)},
        CallCase{"path_without_slash", {"call", "account", "me"}, 0, ordered_json::parse(kMe)},
        CallCase{"post_with_token",
                 {"call", "account", "/echo", "--body", R"({"device":"mac"})", "--token", "t-1"},
                 0,
                 ordered_json::parse(R"({"method":"POST","contentType":"application/json",
                                         "authorization":"Bearer t-1","body":{"device":"mac"}})")},
        CallCase{"rate_limited", {"call", "account", "/busy"}, 1,
                 failure("rateLimited", nullptr, 90, "Şu an çok fazla istek var. 2 dakika sonra yeniden dene.")},
        CallCase{"service_code", {"call", "account", "/full"}, 1,
                 failure("service", "accounts_at_capacity", nullptr,
                         "Kovi şu anda yeni hesap açmaya kapalı. Kontenjan açıldığında yeniden deneyebilirsin.")},
        CallCase{"area_without_table", {"call", "financial", "/payout"}, 1,
                 failure("service", "accounts_at_capacity", nullptr, "Şu anda tamamlanamadı. Yenileyip tekrar dene.")},
        CallCase{"sign_in", {"call", "account", "/gone"}, 1,
                 failure("signInRequired", nullptr, nullptr, "Geçiş anahtarınla yeniden giriş yap.")},
        CallCase{"not_found", {"call", "account", "/nowhere"}, 1,
                 failure("unavailable", nullptr, nullptr, "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene.")},
        CallCase{"garbled_json", {"call", "account", "/garbled"}, 1,
                 failure("invalidResponse", nullptr, nullptr,
                         "Bilgiler doğrulanamadı. Yenileyip tekrar dene.")}),
    [](const auto& info) { return info.param.name; });

TEST_F(CallCommandTest, TokenComesFromTheEnvironmentAndBodyFromAFile) {
  ScopedEnvironment token("KOVI_SERVICE_TOKEN", "from-env");
  const testing::TemporaryDirectory directory;
  const auto file = directory.write("body.json", R"({"from":"file"})");
  const auto run = runKovi({"call", "account", "/echo", "--body", "@" + file.string()});
  EXPECT_EQ(run.exitStatus, 0) << run.err;
  const auto printed = ordered_json::parse(run.out, nullptr, false);
  ASSERT_TRUE(printed.is_object()) << run.out;
  EXPECT_EQ(printed["authorization"], "Bearer from-env");
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
        RefusalCase{"body_not_json", "<server>", {"call", "account", "/echo", "--body", "{oops"},
                    "--body: not valid JSON at line 1, column 2"},
        RefusalCase{"timeout_not_finite", "<server>", {"call", "account", "/me", "--timeout", "nan"},
                    "\"nan\" is out of range (0.001 to 3600 seconds)"},
        RefusalCase{"body_file_missing", "<server>", {"call", "account", "/echo", "--body", "@/no/such/file"},
                    "no such file"},
        RefusalCase{"area_malformed", "<server>", {"call", "Account/../x", "/me"}, "AREA"},
        RefusalCase{"path_with_space", "<server>", {"call", "account", "/m e"}, "PATH"}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace kovi
