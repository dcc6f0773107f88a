// How a response becomes an answer or an error: statuses, content types,
// waits from the header or the body, and which codes count as codes.
#include "KoviKit/native/NativeResponseClassifier.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/native/NativeErrorPrinting.h"

namespace kovi {
namespace {

constexpr UnixMillis kNow = 1'795'316'400'000;

using Outcome = std::expected<std::string, NativeAccountError>;

NativeHttpResponse respond(long status, std::vector<NativeHttpHeader> headers, std::string body) {
  return NativeHttpResponse{status, std::move(headers), std::move(body), false};
}

NativeHttpResponse overLimit(long status, std::vector<NativeHttpHeader> headers) {
  return NativeHttpResponse{status, std::move(headers), "", true};
}

const NativeHttpHeader kJson{"Content-Type", "application/json"};
const NativeHttpHeader kWait9{"Retry-After", "9"};

Outcome failure(NativeAccountError error) { return std::unexpected(std::move(error)); }
Outcome limited(std::int64_t seconds) { return failure(NativeAccountError::rateLimited(seconds)); }
const Outcome kUnavailable = failure(NativeAccountError::unavailable());

// {"pad":"xxx…",<fields>} of exactly `size` bytes.
std::string paddedJson(std::size_t size, std::string_view fields) {
  const std::string frame = "{\"pad\":\"\"," + std::string(fields) + "}";
  return "{\"pad\":\"" + std::string(size - frame.size(), 'x') + "\"," + std::string(fields) + "}";
}

TEST(ClassifierTest, JudgesTheResponse) {
  const struct {
    std::string name;
    NativeHttpResponse response;
    Outcome outcome;
  } cases[] = {
      {"ok_body_not_judged_here", respond(200, {kJson}, "not json"), "not json"},
      {"ok_unflagged_over_limit", respond(200, {kJson}, paddedJson(kNativeResponseBodyLimit + 1, "\"a\":1")),
       failure(NativeAccountError::invalidResponse())},
      {"ok_no_content_type", respond(200, {}, "{}"), kUnavailable},
      {"ok_json_case_differs", respond(200, {{"Content-Type", "Application/JSON"}}, "{}"), kUnavailable},
      {"ok_not_json_with_code", respond(200, {{"Content-Type", "text/plain"}}, R"({"error":"retry_sign_in"})"),
       failure(NativeAccountError::service("retry_sign_in"))},
      {"created", respond(201, {kJson}, "{}"), kUnavailable},
      {"wait_header_lower_case", respond(429, {{"retry-after", " +45 "}}, ""), limited(45)},
      {"wait_body_wins", respond(429, {kJson, kWait9}, R"({"retryAfterSeconds":30})"), limited(30)},
      {"wait_body_negative_kept", respond(429, {kJson}, R"({"retryAfterSeconds":-4})"), limited(-4)},
      {"wait_body_fraction_ignored", respond(429, {kJson, kWait9}, R"({"retryAfterSeconds":1.5})"), limited(9)},
      {"wait_body_at_read_limit",
       respond(429, {kJson, kWait9}, paddedJson(kNativeRateLimitBodyLimit, R"("retryAfterSeconds":30)")), limited(30)},
      {"wait_body_past_read_limit",
       respond(429, {kJson, kWait9}, paddedJson(kNativeRateLimitBodyLimit + 1, R"("retryAfterSeconds":30)")),
       limited(9)},
      {"wait_unreadable", respond(429, {{"Retry-After", "soon"}}, "busy"), limited(kNativeAssumedRateLimitWait)},
      {"wait_code_does_not_matter", respond(429, {kJson}, R"({"error":"sign_in_required"})"),
       limited(kNativeAssumedRateLimitWait)},
      {"code_unknown_kept", respond(409, {kJson}, R"({"error":"no_such_code"})"),
       failure(NativeAccountError::service("no_such_code"))},
      {"code_malformed", respond(400, {kJson}, R"({"error":"Internal_Error"})"), kUnavailable},
      {"code_not_string", respond(400, {kJson}, R"({"error":7})"), kUnavailable},
      {"code_empty", respond(401, {kJson}, R"({"error":""})"), failure(NativeAccountError::signInRequired())},
      {"unauthorized_plain", respond(401, {{"Content-Type", "text/plain"}}, ""), failure(NativeAccountError::signInRequired())},
      {"unauthorized_with_code", respond(401, {kJson}, R"({"error":"expired_challenge"})"),
       failure(NativeAccountError::service("expired_challenge"))},
      {"code_meaning_sign_in", respond(403, {kJson}, R"({"error":"sign_in_required"})"),
       failure(NativeAccountError::signInRequired())},
      {"code_beside_bad_wait", respond(400, {kJson}, R"({"error":"internal_error","retryAfterSeconds":"x"})"),
       failure(NativeAccountError::service("internal_error"))},
      {"over_limit_code_ignored", overLimit(500, {kJson}), kUnavailable},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(acceptNativeResponse(c.response, kNow), c.outcome);
  }
}

TEST(NativeErrorCodeTest, AcceptsOnlyShortLowerSnakeCase) {
  struct Case {
    std::string code;
    bool valid;
  };
  for (const Case& example : std::vector<Case>{{"_", true}, {"walking_evidence_payload_too_large", true},
                                               {std::string(64, 'z'), true}, {std::string(65, 'z'), false},
                                               {"", false}, {"café", false}, {"A", false}, {"a1", false}}) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ(isNativeErrorCode(example.code), example.valid);
  }
}

}  // namespace
}  // namespace kovi
