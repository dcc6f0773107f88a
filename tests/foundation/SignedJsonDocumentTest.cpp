#include "KoviKit/foundation/SignedJsonDocument.h"

#include <gtest/gtest.h>

#include <string>

namespace kovi {
namespace {

struct Case {
  const char* name;
  std::string text;
  std::string error;  // empty when the document is accepted
};

class SignedJsonDocumentTest : public ::testing::TestWithParam<Case> {};

TEST_P(SignedJsonDocumentTest, RefusesRepeatedKeysWithTheirPath) {
  const auto parsed = parseSignedJsonDocument(GetParam().text);
  if (GetParam().error.empty()) {
    ASSERT_TRUE(parsed.has_value()) << parsed.error().message();
    EXPECT_EQ(*parsed, nlohmann::json::parse(GetParam().text));
  } else {
    ASSERT_FALSE(parsed.has_value());
    EXPECT_EQ(parsed.error().message(), GetParam().error);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Documents, SignedJsonDocumentTest,
    ::testing::Values(
        Case{"plain", R"({"a":1,"b":{"a":2},"c":[{"a":3},{"a":4}]})", ""},
        Case{"sameKeyInSiblings", R"([{"k":1},{"k":2}])", ""},
        Case{"topLevel", R"({"a":1,"a":1})", "duplicate key \"a\""},
        Case{"nested", R"({"lease":{"epoch":1,"id":"x","epoch":2}})", "lease: duplicate key \"epoch\""},
        Case{"inArray", R"({"list":[1,{"x":[]},{"y":1,"y":2}]})", "list[2]: duplicate key \"y\""},
        Case{"afterNestedArray", R"({"a":[[1,2],[3]],"b":{"c":1,"c":1}})", "b: duplicate key \"c\""},
        Case{"syntax", R"({"a":)", "not valid JSON (at byte 5)"},
        Case{"trailing", R"({} x)", "not valid JSON (at byte 3)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(SignedJsonDocumentDepthTest, AcceptsTheBoundAndRefusesOneMore) {
  const std::size_t bound = kSignedJsonMaximumDepth;
  EXPECT_TRUE(parseSignedJsonDocument(std::string(bound, '[') + std::string(bound, ']')).has_value());
  const auto deeper = parseSignedJsonDocument(std::string(bound + 1, '[') + std::string(bound + 1, ']'));
  ASSERT_FALSE(deeper.has_value());
  EXPECT_EQ(deeper.error().reason, "nested deeper than 64 levels");
}

}  // namespace
}  // namespace kovi
