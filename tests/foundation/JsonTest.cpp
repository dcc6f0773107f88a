#include "KoviKit/foundation/Json.h"
#include "tests/support/Refusal.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kovi {
namespace {

enum class Colour { ginger, tabby };

struct Kitten {
  std::string name;
  std::int64_t ageDays = 0;
  std::optional<Colour> colour;
  std::vector<int> toys;
  bool operator==(const Kitten&) const = default;
};

}  // namespace

template <>
struct EnumNames<Colour> {
  static constexpr std::array table{std::pair{Colour::ginger, std::string_view("ginger")},
                                    std::pair{Colour::tabby, std::string_view("tabby")}};
};

template <>
struct JsonDecoder<Kitten> {
  static Decoded<Kitten> decode(const JsonView& json) {
    if (auto keys = json.requireOnlyKeys({"name", "ageDays", "colour", "toys"}); !keys) return std::unexpected(keys.error());
    auto name = json.get<std::string>("name");
    if (!name) return std::unexpected(name.error());
    auto age = json.get<std::int64_t>("ageDays");
    if (!age) return std::unexpected(age.error());
    auto colour = json.getOptional<Colour>("colour");
    if (!colour) return std::unexpected(colour.error());
    auto toys = json.get<std::vector<int>>("toys");
    if (!toys) return std::unexpected(toys.error());
    return Kitten{*name, *age, *colour, *toys};
  }
};

namespace {

// Paths, types and unknown keys as records see them are read in the record
// coding's tests; these are the parser's and the typed readers' own refusals.
TEST(JsonTest, RefusalsNameThePathAndTheReason) {
  const struct {
    const char* json;
    const char* message;
  } cases[] = {
      {R"([{"name": "Pamuk", "ageDays": 9223372036854775808, "toys": []}])", "[0].ageDays: integer out of range"},
      {R"([{"name": "Pamuk", "ageDays": 3, "colour": "black", "toys": []}])", "[0].colour: unknown value \"black\""},
      {R"([{"name": "Pamuk", "ageDays": 3, "toys": [2147483648]}])", "[0].toys[0]: integer out of range"},
      {R"([{"name": "Pamuk", "ageDays": 3, "toys": []}, {"name": "A", "name": "B"}])", "[1].name: duplicate key"},
      {"[{\"name\": \"Pamuk\",\n  \"toys\": [1 2]}]",
       "not valid JSON at line 2, column 14: syntax error while parsing array - unexpected number literal; "
       "expected ']'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.json);
    EXPECT_EQ(testing::refusalOf(decodeJsonText<std::vector<Kitten>>(c.json)), c.message);
  }
}

TEST(JsonTest, RefusesNestingPastTheDepthLimitWithoutExhaustingTheStack) {
  const auto nested = [](int depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_TRUE(parseJson(nested(kJsonMaximumDepth)).has_value());
  for (const int depth : {kJsonMaximumDepth + 1, 35'000}) {
    const auto parsed = parseOrderedJson(nested(depth));
    ASSERT_FALSE(parsed.has_value()) << depth;
    EXPECT_EQ(parsed.error().message(), "nested deeper than 128 levels");
  }
}

TEST(JsonTest, DecodesOptionalsIntegralNumbersAndArrays) {
  const auto decoded = decodeJsonText<std::vector<Kitten>>(
      R"([{"name": "Pamuk", "ageDays": 3.0, "toys": [1, 2]},
          {"name": "Duman", "ageDays": -4, "colour": "tabby", "toys": []}])");
  ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
  EXPECT_EQ(*decoded, (std::vector<Kitten>{{"Pamuk", 3, std::nullopt, {1, 2}}, {"Duman", -4, Colour::tabby, {}}}));
}

TEST(JsonTest, BooleansAreNotNumbersAndEnumerationsWriteTheirRawValue) {
  const auto document = parseJson(R"({"flag": 1, "count": true})");
  ASSERT_TRUE(document.has_value());
  const JsonView view(*document);
  EXPECT_EQ(view.get<bool>("flag").error().message(), "flag: expected a boolean, found a number");
  EXPECT_EQ(view.get<std::int64_t>("count").error().message(), "count: expected an integer, found a boolean");
  nlohmann::ordered_json encoded;
  encoded["colour"] = Colour::ginger;
  EXPECT_EQ(encoded.dump(), R"({"colour":"ginger"})");
  EXPECT_EQ(enumFromName<Colour>("tabby"), Colour::tabby);
  EXPECT_EQ(enumFromName<Colour>("Tabby"), std::nullopt);
}

}  // namespace
}  // namespace kovi
