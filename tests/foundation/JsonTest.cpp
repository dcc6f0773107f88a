#include "KoviKit/foundation/Json.h"

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

struct RejectCase {
  const char* json;
  const char* message;
  friend void PrintTo(const RejectCase& c, std::ostream* out) { *out << c.json; }
};

class JsonRejectTest : public ::testing::TestWithParam<RejectCase> {};

TEST_P(JsonRejectTest, NamesThePathAndTheReason) {
  const auto decoded = decodeJsonText<std::vector<Kitten>>(GetParam().json);
  ASSERT_FALSE(decoded.has_value());
  EXPECT_EQ(decoded.error().message(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Json, JsonRejectTest,
    ::testing::Values(
        RejectCase{R"([{"ageDays": 3, "toys": []}])", "[0].name: missing key"},
        RejectCase{R"([{"name": 7, "ageDays": 3, "toys": []}])", "[0].name: expected a string, found a number"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 1.5, "toys": []}])",
                   "[0].ageDays: expected an integer, found a number"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 9223372036854775808, "toys": []}])",
                   "[0].ageDays: integer out of range"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 3, "colour": "black", "toys": []}])",
                   "[0].colour: unknown value \"black\""},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 3, "toys": [1, "ball"]}])",
                   "[0].toys[1]: expected an integer, found a string"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 3, "toys": [2147483648]}])", "[0].toys[0]: integer out of range"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 3, "toys": [], "owner": "Ece"}])", "[0].owner: unknown key"},
        RejectCase{R"({"name": "Pamuk"})", "expected an array, found an object"},
        RejectCase{R"([{"name": "Pamuk", "ageDays": 3, "toys": []}, {"name": "A", "name": "B"}])",
                   "[1].name: duplicate key"},
        RejectCase{"[{\"name\": \"Pamuk\",\n  \"toys\": [1 2]}]",
                   "not valid JSON at line 2, column 14: syntax error while parsing array - unexpected number "
                   "literal; expected ']'"}));

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
          {"name": "Duman", "ageDays": -4, "colour": "tabby", "toys": []},
          {"name": "Zeytin", "ageDays": 0, "colour": null, "toys": []}])");
  ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
  EXPECT_EQ(*decoded, (std::vector<Kitten>{{"Pamuk", 3, std::nullopt, {1, 2}},
                                           {"Duman", -4, Colour::tabby, {}},
                                           {"Zeytin", 0, std::nullopt, {}}}));
}

TEST(JsonTest, BooleansAreNotNumbers) {
  const auto document = parseJson(R"({"flag": 1, "count": true})");
  ASSERT_TRUE(document.has_value());
  const JsonView view(*document);
  EXPECT_EQ(view.get<bool>("flag").error().message(), "flag: expected a boolean, found a number");
  EXPECT_EQ(view.get<std::int64_t>("count").error().message(), "count: expected an integer, found a boolean");
}

TEST(JsonTest, EnumerationsWriteTheirRawValue) {
  nlohmann::ordered_json encoded;
  encoded["colour"] = Colour::ginger;
  EXPECT_EQ(encoded.dump(), R"({"colour":"ginger"})");
  EXPECT_EQ(enumFromName<Colour>("tabby"), Colour::tabby);
  EXPECT_EQ(enumFromName<Colour>("Tabby"), std::nullopt);
}

}  // namespace
}  // namespace kovi
