#include "KoviKit/native/NativeResponseClassifier.h"

#include "tests/native/NativeErrorPrinting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kovi {
namespace {

constexpr UnixMillis kNow = 1'795'316'400'000;  // Sun, 22 Nov 2026 03:00:00 GMT

using Outcome = std::expected<std::string, NativeAccountError>;

struct ClassifierCase {
  std::string name;
  NativeHttpResponse response;
  Outcome outcome;
};

void PrintTo(const ClassifierCase& example, std::ostream* out) { *out << example.name; }

NativeHttpResponse respond(long status, std::vector<NativeHttpHeader> headers, std::string body) {
  return NativeHttpResponse{status, std::move(headers), std::move(body), false};
}

NativeHttpResponse overLimit(long status, std::vector<NativeHttpHeader> headers) {
  return NativeHttpResponse{status, std::move(headers), "", true};
}

const NativeHttpHeader kJson{"Content-Type", "application/json"};

Outcome failure(NativeAccountError error) { return std::unexpected(std::move(error)); }

std::string paddedJson(std::size_t size, std::string_view fields) {
  // {"pad":"xxx…",<fields>} of exactly `size` bytes.
  const std::string frame = std::string("{\"pad\":\"\",") + std::string(fields) + "}";
  return "{\"pad\":\"" + std::string(size - frame.size(), 'x') + "\"," + std::string(fields) + "}";
}

class ClassifierTest : public ::testing::TestWithParam<ClassifierCase> {};

TEST_P(ClassifierTest, JudgesTheResponse) {
  const auto& example = GetParam();
  const auto outcome = acceptNativeResponse(example.response, kNow);
  if (example.outcome) {
    ASSERT_TRUE(outcome.has_value()) << outcome.error().description();
    EXPECT_EQ(*outcome, *example.outcome);
  } else {
    ASSERT_FALSE(outcome.has_value()) << "accepted " << *outcome;
    EXPECT_EQ(outcome.error(), example.outcome.error()) << outcome.error().description();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Success, ClassifierTest,
    ::testing::Values(
        ClassifierCase{"ok_json", respond(200, {kJson}, R"({"a":1})"), R"({"a":1})"},
        ClassifierCase{"ok_json_charset", respond(200, {{"content-type", "application/json; charset=utf-8"}}, "[]"), "[]"},
        ClassifierCase{"ok_body_not_judged_here", respond(200, {kJson}, "not json"), "not json"},
        ClassifierCase{"ok_at_limit", respond(200, {kJson}, paddedJson(kNativeResponseBodyLimit, R"("a":1)")),
                       paddedJson(kNativeResponseBodyLimit, R"("a":1)")},
        ClassifierCase{"ok_over_limit", overLimit(200, {kJson}), failure(NativeAccountError::invalidResponse())},
        ClassifierCase{"ok_unflagged_over_limit",
                       respond(200, {kJson}, paddedJson(kNativeResponseBodyLimit + 1, R"("a":1)")),
                       failure(NativeAccountError::invalidResponse())}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    WrongShape, ClassifierTest,
    ::testing::Values(
        ClassifierCase{"ok_html", respond(200, {{"Content-Type", "text/html"}}, "<p>hi</p>"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"ok_no_content_type", respond(200, {}, "{}"), failure(NativeAccountError::unavailable())},
        ClassifierCase{"ok_json_case_differs", respond(200, {{"Content-Type", "Application/JSON"}}, "{}"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"ok_html_with_code", respond(200, {{"Content-Type", "text/plain"}}, R"({"error":"retry_sign_in"})"),
                       failure(NativeAccountError::service("retry_sign_in"))},
        ClassifierCase{"created", respond(201, {kJson}, "{}"), failure(NativeAccountError::unavailable())},
        ClassifierCase{"redirect", respond(302, {{"Location", "https://elsewhere.example/"}}, ""),
                       failure(NativeAccountError::unavailable())}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    RateLimits, ClassifierTest,
    ::testing::Values(
        ClassifierCase{"header_seconds", respond(429, {{"Retry-After", "120"}}, ""),
                       failure(NativeAccountError::rateLimited(120))},
        ClassifierCase{"header_name_any_case", respond(429, {{"retry-after", " +45 "}}, ""),
                       failure(NativeAccountError::rateLimited(45))},
        ClassifierCase{"header_date", respond(429, {{"Retry-After", "Sun, 22 Nov 2026 03:10:00 GMT"}}, ""),
                       failure(NativeAccountError::rateLimited(600))},
        ClassifierCase{"body_wins_over_header",
                       respond(429, {kJson, {"Retry-After", "120"}}, R"({"retryAfterSeconds":30})"),
                       failure(NativeAccountError::rateLimited(30))},
        ClassifierCase{"body_negative_kept", respond(429, {kJson}, R"({"retryAfterSeconds":-4})"),
                       failure(NativeAccountError::rateLimited(-4))},
        ClassifierCase{"body_fraction_ignored",
                       respond(429, {kJson, {"Retry-After", "9"}}, R"({"retryAfterSeconds":1.5})"),
                       failure(NativeAccountError::rateLimited(9))},
        ClassifierCase{"body_at_read_limit",
                       respond(429, {kJson, {"Retry-After", "9"}},
                               paddedJson(kNativeRateLimitBodyLimit, R"("retryAfterSeconds":30)")),
                       failure(NativeAccountError::rateLimited(30))},
        ClassifierCase{"body_past_read_limit",
                       respond(429, {kJson, {"Retry-After", "9"}},
                               paddedJson(kNativeRateLimitBodyLimit + 1, R"("retryAfterSeconds":30)")),
                       failure(NativeAccountError::rateLimited(9))},
        ClassifierCase{"neither_usable", respond(429, {{"Retry-After", "soon"}}, "busy"),
                       failure(NativeAccountError::rateLimited(kNativeAssumedRateLimitWait))},
        ClassifierCase{"code_does_not_matter", respond(429, {kJson}, R"({"error":"sign_in_required"})"),
                       failure(NativeAccountError::rateLimited(kNativeAssumedRateLimitWait))},
        ClassifierCase{"over_limit_uses_header", overLimit(429, {{"Retry-After", "45"}}),
                       failure(NativeAccountError::rateLimited(45))}),
    [](const auto& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Codes, ClassifierTest,
    ::testing::Values(
        ClassifierCase{"service_code", respond(400, {kJson}, R"({"error":"accounts_at_capacity"})"),
                       failure(NativeAccountError::service("accounts_at_capacity"))},
        ClassifierCase{"unknown_code_kept", respond(409, {kJson}, R"({"error":"no_such_code"})"),
                       failure(NativeAccountError::service("no_such_code"))},
        ClassifierCase{"sign_in_code", respond(403, {kJson}, R"({"error":"sign_in_required"})"),
                       failure(NativeAccountError::signInRequired())},
        ClassifierCase{"code_beats_401", respond(401, {kJson}, R"({"error":"expired_challenge"})"),
                       failure(NativeAccountError::service("expired_challenge"))},
        ClassifierCase{"code_of_64", respond(400, {kJson}, R"({"error":")" + std::string(64, 'a') + R"("})"),
                       failure(NativeAccountError::service(std::string(64, 'a')))},
        ClassifierCase{"code_of_65", respond(400, {kJson}, R"({"error":")" + std::string(65, 'a') + R"("})"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_empty", respond(401, {kJson}, R"({"error":""})"),
                       failure(NativeAccountError::signInRequired())},
        ClassifierCase{"code_upper_case", respond(400, {kJson}, R"({"error":"Internal_Error"})"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_with_digit", respond(400, {kJson}, R"({"error":"v6_error"})"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_with_dash", respond(400, {kJson}, R"({"error":"internal-error"})"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_not_string", respond(400, {kJson}, R"({"error":7})"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_beside_bad_wait", respond(400, {kJson}, R"({"error":"internal_error","retryAfterSeconds":"x"})"),
                       failure(NativeAccountError::service("internal_error"))},
        ClassifierCase{"body_is_array", respond(400, {kJson}, R"(["internal_error"])"),
                       failure(NativeAccountError::unavailable())},
        ClassifierCase{"code_over_limit_ignored", overLimit(500, {kJson}), failure(NativeAccountError::unavailable())},
        ClassifierCase{"unauthorized_plain", respond(401, {}, ""), failure(NativeAccountError::signInRequired())},
        ClassifierCase{"unauthorized_over_limit", overLimit(401, {}), failure(NativeAccountError::signInRequired())},
        ClassifierCase{"server_error_html", respond(503, {{"Content-Type", "text/html"}}, "<h1>down</h1>"),
                       failure(NativeAccountError::unavailable())}),
    [](const auto& info) { return info.param.name; });

TEST(NativeErrorCodeTest, AcceptsOnlyShortLowerSnakeCase) {
  struct Case {
    std::string code;
    bool valid;
  };
  for (const Case& example : std::vector<Case>{{"a", true},
                                               {"_", true},
                                               {"walking_evidence_payload_too_large", true},
                                               {std::string(64, 'z'), true},
                                               {std::string(65, 'z'), false},
                                               {"", false},
                                               {"café", false},
                                               {"a b", false},
                                               {"A", false},
                                               {"a1", false}}) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ(isNativeErrorCode(example.code), example.valid);
  }
}

}  // namespace
}  // namespace kovi
