#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "KoviKit/foundation/CanonicalJsonWriter.h"

namespace kovi {
namespace {

using nlohmann::ordered_json;

std::expected<std::string, std::string> canonical(const ordered_json& value) {
  CanonicalJsonWriter writer;
  if (auto written = writeCanonicalJson(writer, value, "record"); !written) return std::unexpected(written.error());
  return writer.take();
}

ordered_json nestedArrays(std::size_t depth) {
  ordered_json value = 0;
  for (std::size_t level = 0; level < depth; ++level) value = ordered_json::array({value});
  return value;
}

TEST(CanonicalJsonTest, WritesValuesInTheirOwnKeyOrderWithoutWhitespace) {
  const struct {
    ordered_json value;
    const char* text;
  } cases[] = {
      // Declared order, not sorted order.
      {ordered_json{{"zeta", 1}, {"alpha", 2}}, R"({"zeta":1,"alpha":2})"},
      {ordered_json{{"list", {1, -2, 3}}, {"none", nullptr}, {"flag", false}},
       R"({"list":[1,-2,3],"none":null,"flag":false})"},
      {ordered_json{{"big", 18446744073709551615ULL}, {"low", INT64_MIN}},
       R"({"big":18446744073709551615,"low":-9223372036854775808})"},
      {ordered_json{{"text", "say \"hi\"\\ \n\x01 /ğ"}}, "{\"text\":\"say \\\"hi\\\"\\\\ \\n\\u0001 /ğ\"}"},
      {ordered_json::object(), "{}"},
      {ordered_json::array({ordered_json::object(), ordered_json::array()}), "[{},[]]"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(canonical(c.value), c.text);
  }
}

TEST(CanonicalJsonTest, RefusesValuesWithoutACanonicalFormNamingWhere) {
  const struct {
    ordered_json value;
    const char* error;
  } cases[] = {
      {ordered_json{{"steps", {{"days", {1, 2, 2.5}}}}},
       "record.steps.days[2]: a non-integral number has no canonical form"},
      {ordered_json(1.0), "record: a non-integral number has no canonical form"},
      {ordered_json{{"blob", ordered_json::binary({1, 2})}}, "record.blob: not a JSON value"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.error);
    EXPECT_EQ(canonical(c.value), std::unexpected(std::string(c.error)));
  }
}

TEST(CanonicalJsonTest, BoundsNestingDepth) {
  EXPECT_TRUE(canonical(nestedArrays(kCanonicalJsonDepthLimit)).has_value());
  const auto tooDeep = canonical(nestedArrays(kCanonicalJsonDepthLimit + 1));
  ASSERT_FALSE(tooDeep.has_value());
  EXPECT_NE(tooDeep.error().find("nested deeper than 64 levels"), std::string::npos) << tooDeep.error();
}

}  // namespace
}  // namespace kovi
