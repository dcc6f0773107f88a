// The classification rules the loopback-server tests do not reach: header
// spellings, read limits on a rate-limit body, and which codes count as codes.
#include "KoviKit/native/NativeResponseClassifier.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/native/NativeErrorPrinting.h"

namespace kovi {
namespace {

constexpr UnixMillis kNow = 1'795'316'400'000;

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
Outcome limited(std::int64_t seconds) { return failure(NativeAccountError::rateLimited(seconds)); }
const Outcome kUnavailable = failure(NativeAccountError::unavailable());

// {"pad":"xxx…",<fields>} of exactly `size` bytes.
std::string paddedJson(std::size_t size, std::string_view fields) {
  const std::string frame = "{\"pad\":\"\"," + std::string(fields) + "}";
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
    EXPECT_EQ(outcome.error(), example.outcome.error());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ClassifierTest,
    ::testing::Values(
        ClassifierCase{"ok_body_not_judged_here", respond(200, {kJson}, "not json"), "not json"},
        ClassifierCase{"ok_unflagged_over_limit", respond(200, {kJson}, paddedJson(kNativeResponseBodyLimit + 1, "\"a\":1")),
                       failure(NativeAccountError::invalidResponse())},
        ClassifierCase{"ok_no_content_type", respond(200, {}, "{}"), kUnavailable},
        ClassifierCase{"ok_json_case_differs", respond(200, {{"Content-Type", "Application/JSON"}}, "{}"), kUnavailable},
        ClassifierCase{"ok_not_json_with_code", respond(200, {{"Content-Type", "text/plain"}}, R"({"error":"retry_sign_in"})"),
                       failure(NativeAccountError::service("retry_sign_in"))},
        ClassifierCase{"created", respond(201, {kJson}, "{}"), kUnavailable},
        ClassifierCase{"wait_header_padded", respond(429, {{"retry-after", " +45 "}}, ""), limited(45)},
        ClassifierCase{"wait_body_negative_kept", respond(429, {kJson}, R"({"retryAfterSeconds":-4})"), limited(-4)},
        ClassifierCase{"wait_body_fraction_ignored", respond(429, {kJson, {"Retry-After", "9"}}, R"({"retryAfterSeconds":1.5})"),
                       limited(9)},
        ClassifierCase{"wait_body_at_read_limit",
                       respond(429, {kJson, {"Retry-After", "9"}}, paddedJson(kNativeRateLimitBodyLimit, R"("retryAfterSeconds":30)")),
                       limited(30)},
        ClassifierCase{"wait_body_past_read_limit",
                       respond(429, {kJson, {"Retry-After", "9"}},
                               paddedJson(kNativeRateLimitBodyLimit + 1, R"("retryAfterSeconds":30)")),
                       limited(9)},
        ClassifierCase{"wait_unreadable", respond(429, {{"Retry-After", "soon"}}, "busy"), limited(kNativeAssumedRateLimitWait)},
        ClassifierCase{"wait_code_does_not_matter", respond(429, {kJson}, R"({"error":"sign_in_required"})"),
                       limited(kNativeAssumedRateLimitWait)},
        ClassifierCase{"code_unknown_kept", respond(409, {kJson}, R"({"error":"no_such_code"})"),
                       failure(NativeAccountError::service("no_such_code"))},
        ClassifierCase{"code_malformed", respond(400, {kJson}, R"({"error":"Internal_Error"})"), kUnavailable},
        ClassifierCase{"code_not_string", respond(400, {kJson}, R"({"error":7})"), kUnavailable},
        ClassifierCase{"code_empty", respond(401, {kJson}, R"({"error":""})"), failure(NativeAccountError::signInRequired())},
        ClassifierCase{"code_beside_bad_wait", respond(400, {kJson}, R"({"error":"internal_error","retryAfterSeconds":"x"})"),
                       failure(NativeAccountError::service("internal_error"))},
        ClassifierCase{"over_limit_code_ignored", overLimit(500, {kJson}), kUnavailable}),
    [](const auto& info) { return info.param.name; });

TEST(NativeErrorCodeTest, AcceptsOnlyShortLowerSnakeCase) {
  struct Case {
    std::string code;
    bool valid;
  };
  for (const Case& example : std::vector<Case>{{"_", true}, {"walking_evidence_payload_too_large", true},
                                               {std::string(64, 'z'), true}, {std::string(65, 'z'), false},
                                               {"", false}, {"café", false}, {"a b", false}, {"A", false},
                                               {"a1", false}, {"a-b", false}}) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ(isNativeErrorCode(example.code), example.valid);
  }
}

}  // namespace
}  // namespace kovi
