// `kovi call` against a real loopback server, through the built binary: what
// the command adds to the client (arguments, the token, a body file, the
// areas' error tables, the printed shape and the exit status).
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
using testing::runKovi;
using testing::ScopedEnvironment;

const std::string kMe = R"({"name":"Ada","plan":"free","age":3})";

ordered_json failure(const std::string& error, const ordered_json& code, const ordered_json& wait,
                     const std::string& message) {
  return {{"error", error}, {"code", code}, {"retryAfterSeconds", wait}, {"message", message}};
}

class CallCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    server_.answer("/api/native/account/me", 200, kMe);
    server_.answer("/api/native/account/session", 200, R"({"ok":true})");
    server_.answer("/api/native/account/busy", 429, R"({"retryAfterSeconds":90})");
    // One code, in an area with a table of messages and in one without.
    server_.answer("/api/native/account/full", 409, R"({"error":"accounts_at_capacity"})");
    server_.answer("/api/native/financial/full", 409, R"({"error":"accounts_at_capacity"})");
  }

  testing::RecordingServer server_;
  ScopedEnvironment origin_{"KOVI_SERVICE_ORIGIN", server_.serviceOrigin().url()};
  ScopedEnvironment token_{"KOVI_TOKEN", std::nullopt};
};

TEST_F(CallCommandTest, PrintsTheAnswerOrTheErrorObject) {
  const struct {
    std::string area, path;
    int exitStatus;
    ordered_json out;
  } cases[] = {
      {"account", "/me", 0, ordered_json::parse(kMe)},
      {"account", "/busy", 1,
       failure("rateLimited", nullptr, 90, "Şu an çok fazla istek var. 2 dakika sonra yeniden dene.")},
      {"account", "/full", 1,
       failure("service", "accounts_at_capacity", nullptr,
               "Kovi şu anda yeni hesap açmaya kapalı. Kontenjan açıldığında yeniden deneyebilirsin.")},
      {"financial", "/full", 1,
       failure("service", "accounts_at_capacity", nullptr, "Şu anda tamamlanamadı. Yenileyip tekrar dene.")},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.area + c.path);
    const auto run = runKovi({"call", c.area, c.path});
    EXPECT_EQ(run.exitStatus, c.exitStatus) << run.err;
    const auto printed = ordered_json::parse(run.out, nullptr, false);
    ASSERT_FALSE(printed.is_discarded()) << "not one JSON document: " << run.out;
    // Compared as text so the key order counts too.
    EXPECT_EQ(printed.dump(), c.out.dump());
    const auto received = server_.takeReceived();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].method, "GET");
    EXPECT_EQ(received[0].header("Authorization"), "<absent>");
  }
}

// The body as given or from a file is POSTed; the token from --token or
// $KOVI_TOKEN is sent and never printed.
TEST_F(CallCommandTest, PostsTheBodyWithTheToken) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.write("body.json", R"({"from":"file"})");
  const struct {
    std::optional<std::string> environment;
    std::vector<std::string> arguments;
    std::string authorization;
    std::string body;
  } cases[] = {
      {std::nullopt, {"--body", R"({"device":"mac"})", "--token", "t-1"}, "Bearer t-1", R"({"device":"mac"})"},
      {"from-env", {"--body", "@" + file.string()}, "Bearer from-env", R"({"from":"file"})"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.authorization);
    ScopedEnvironment token("KOVI_TOKEN", c.environment);
    std::vector<std::string> arguments{"call", "account", "/session"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const auto run = runKovi(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.err;
    EXPECT_EQ(run.out, "{\n  \"ok\": true\n}\n");
    EXPECT_EQ(run.err.find(c.authorization.substr(7)), std::string::npos) << "the token is never printed";
    const auto received = server_.takeReceived();
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].method, "POST");
    EXPECT_EQ(received[0].header("Content-Type"), "application/json");
    EXPECT_EQ(received[0].header("Authorization"), c.authorization);
    EXPECT_EQ(received[0].body, c.body);
  }
}

// Requests that must not be sent at all: exit 2, nothing on standard output.
TEST_F(CallCommandTest, RefusesBeforeSending) {
  const std::string origin = server_.serviceOrigin().url();
  const struct {
    std::optional<std::string> origin;
    std::vector<std::string> arguments;
    std::string errPart;
  } cases[] = {
      {std::nullopt, {"call", "account", "/me"}, "KOVI_SERVICE_ORIGIN is not set"},
      {origin, {"call", "account", "/session", "--body", "{oops"}, "--body: not valid JSON at line 1, column 2"},
      {origin, {"call", "account", "/me", "--timeout", "nan"}, "\"nan\" is out of range (0.001 to 3600 seconds)"},
      {origin, {"call", "account", "/session", "--body", "@/no/such/file"}, "no such file"},
      {origin, {"call", "Account/../x", "/me"}, "AREA"}, {origin, {"call", "account", "/m e"}, "PATH"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.errPart);
    ScopedEnvironment environment("KOVI_SERVICE_ORIGIN", c.origin);
    const auto run = runKovi(c.arguments);
    EXPECT_EQ(run.exitStatus, 2) << run.out;
    EXPECT_EQ(run.out, "");
    EXPECT_NE(run.err.find(c.errPart), std::string::npos) << run.err;
  }
  EXPECT_TRUE(server_.takeReceived().empty());
}

}  // namespace
}  // namespace kovi
