// How a response becomes an answer or an error: statuses, content types,
// waits from the header or the body, and which codes count as codes.
#include "KoviKit/native/NativeResponseClassifier.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

constexpr UnixMillis kNow = 1'795'316'400'000;

// {"pad":"xxx…",<fields>} of exactly `size` bytes.
std::string paddedJson(std::size_t size, std::string_view fields) {
  const std::string frame = "{\"pad\":\"\"," + std::string(fields) + "}";
  return "{\"pad\":\"" + std::string(size - frame.size(), 'x') + "\"," + std::string(fields) + "}";
}

// A row's body is written out, or padded with `fields` to a read limit and
// `past` bytes beyond it; the outcome is the accepted body or the error as
// its description shows it.
TEST(ClassifierTest, JudgesTheResponse) {
  const auto rows = parseJson(testing::testDataFile("native", "classified-responses.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 23) << "classified-responses.json";
  for (const nlohmann::json& c : *rows) {
    SCOPED_TRACE(c.at("name").get<std::string>());
    std::vector<NativeHttpHeader> headers;
    for (const nlohmann::json& header : c.at("headers")) {
      headers.push_back({header[0].get<std::string>(), header[1].get<std::string>()});
    }
    std::string body = c.value("body", "");
    if (c.contains("paddedTo")) {
      const std::size_t limit = c.at("paddedTo") == "response" ? kNativeResponseBodyLimit : kNativeRateLimitBodyLimit;
      body = paddedJson(limit + c.at("past").get<std::size_t>(), c.at("fields").get<std::string>());
    }
    // The accepted body views the response, so the response outlives the check.
    const NativeHttpResponse response{c.at("status").get<long>(), headers, body, c.value("overLimit", false)};
    const auto outcome = acceptNativeResponse(response, kNow);
    EXPECT_EQ(outcome ? "accepted " + std::string(*outcome) : outcome.error().description(),
              c.at("outcome").get<std::string>());
  }
}

TEST(NativeErrorCodeTest, AcceptsOnlyShortLowerSnakeCase) {
  const auto rows = parseJson(testing::testDataFile("native", "error-codes.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 8) << "error-codes.json";
  for (const nlohmann::json& c : *rows) {
    EXPECT_EQ(isNativeErrorCode(c.at("code").get<std::string>()), c.at("valid").get<bool>()) << c.dump();
  }
}

}  // namespace
}  // namespace kovi
