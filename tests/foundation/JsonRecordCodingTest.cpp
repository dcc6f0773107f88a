#include "KoviKit/foundation/JsonRecordCoding.h"
#include "tests/support/Refusal.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace kovi {
namespace {

// One record shape under either policy, so every case runs against both.
template <JsonRecordPolicy policy>
struct Tag {
  std::string id;
  std::optional<std::int64_t> size;
  bool operator==(const Tag&) const = default;
};

template <JsonRecordPolicy policy>
struct Pet {
  std::string name;
  std::optional<std::int64_t> age;
  Tag<policy> tag;
  std::vector<Tag<policy>> spares;
  std::optional<Date> adopted;
  bool operator==(const Pet&) const = default;
};

}  // namespace

template <JsonRecordPolicy chosen>
struct JsonRecordFields<Tag<chosen>> {
  static constexpr JsonRecordPolicy policy = chosen;
  static constexpr auto fields = std::tuple{field("id", &Tag<chosen>::id), field("size", &Tag<chosen>::size)};
};

template <JsonRecordPolicy chosen>
struct JsonRecordFields<Pet<chosen>> {
  using R = Pet<chosen>;
  static constexpr JsonRecordPolicy policy = chosen;
  static constexpr auto fields = std::tuple{field("name", &R::name), field("age", &R::age), field("tag", &R::tag),
                                            field("spares", &R::spares), field("adopted", &R::adopted)};
};

namespace {

constexpr auto strict = JsonRecordPolicy::strict;
constexpr auto lenient = JsonRecordPolicy::lenient;

// Runs `check(case, policy)` for every case under each policy, the policy as
// a compile-time constant; a failure's trace names the case and the policy.
template <class Case, std::size_t count, class Check>
void forEachCaseAndPolicy(const Case (&cases)[count], Check check) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.label);
    {
      SCOPED_TRACE("strict");
      check(c, std::integral_constant<JsonRecordPolicy, strict>{});
    }
    {
      SCOPED_TRACE("lenient");
      check(c, std::integral_constant<JsonRecordPolicy, lenient>{});
    }
  }
}

// Every case that decodes yields this record: the cases differ only in what
// surrounds it.
template <JsonRecordPolicy policy>
Pet<policy> plainPet() {
  return {.name = "Tekir", .age = std::nullopt, .tag = {.id = "a", .size = std::nullopt}, .spares = {},
          .adopted = std::nullopt};
}

template <JsonRecordPolicy policy>
Pet<policy> fullPet() {
  return {.name = "Pamuk", .age = 3, .tag = {.id = "a", .size = 2},
          .spares = {{.id = "b", .size = std::nullopt}, {.id = "c", .size = 4}},
          .adopted = Date::fromSecondsSince2001(800000000.5)};
}

struct DecodeCase {
  const char* label;
  const char* json;
  // The error message under each policy; null when the text decodes to plainPet.
  const char* strictError;
  const char* lenientError;
};

const DecodeCase kDecodeCases[] = {
    {"unknown key", R"({"name":"Tekir","tag":{"id":"a"},"spares":[],"whiskers":3})", "whiskers: unknown key",
     nullptr},
    {"unknown nested key", R"({"name":"Tekir","tag":{"id":"a","colour":"x"},"spares":[]})",
     "tag.colour: unknown key", nullptr},
    {"unknown key before missing key", R"({"zzz":1})", "zzz: unknown key", "name: missing key"},
    {"null optionals", R"({"name":"Tekir","age":null,"tag":{"id":"a","size":null},"spares":[],"adopted":null})",
     nullptr, nullptr},
    {"first failing field", R"({"name":"Tekir","age":"old","tag":{"id":5},"spares":[]})",
     "age: expected an integer, found a string", "age: expected an integer, found a string"},
    {"failure inside a list", R"({"name":"Tekir","tag":{"id":"a"},"spares":[{"id":"b"},{"id":"c","size":1.5}]})",
     "spares[1].size: expected an integer, found a number", "spares[1].size: expected an integer, found a number"},
    {"missing nested key", R"({"name":"Tekir","tag":{},"spares":[]})", "tag.id: missing key", "tag.id: missing key"},
    {"timestamp out of range", R"({"name":"Tekir","tag":{"id":"a"},"spares":[],"adopted":1e300})",
     "adopted: timestamp out of range", "adopted: timestamp out of range"},
    {"not an object", R"([])", "expected an object, found an array", "expected an object, found an array"},
};

template <JsonRecordPolicy policy>
void expectDecoding(const DecodeCase& c) {
  const char* error = policy == strict ? c.strictError : c.lenientError;
  const auto decoded = decodeJsonText<Pet<policy>>(c.json);
  if (error == nullptr) {
    ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
    EXPECT_EQ(*decoded, plainPet<policy>());
  } else {
    ASSERT_FALSE(decoded.has_value());
    EXPECT_EQ(decoded.error().message(), error);
  }
}

TEST(JsonRecordCodingTest, DecodesUnderEachPolicy) {
  forEachCaseAndPolicy(kDecodeCases,
                       [](const DecodeCase& c, auto policy) { expectDecoding<decltype(policy)::value>(c); });
}

// A strict record has one spelling of a count, nested lists included; a
// lenient one reads an integral number as the integer it is.
TEST(JsonRecordCodingTest, StrictRecordsTakeOnlyIntegerLiterals) {
  EXPECT_EQ(testing::refusalOf(decodeJsonText<Pet<strict>>(R"({"name":"T","age":3.0,"tag":{"id":"a"},"spares":[]})")),
            "age: expected an integer, found a number");
  const char* nested = R"({"name":"T","tag":{"id":"a"},"spares":[{"id":"b","size":1e3}]})";
  EXPECT_EQ(testing::refusalOf(decodeJsonText<Pet<strict>>(nested)),
            "spares[0].size: expected an integer, found a number");
  const auto lenientSpare = decodeJsonText<Pet<lenient>>(nested);
  ASSERT_TRUE(lenientSpare.has_value()) << lenientSpare.error().message();
  EXPECT_EQ(lenientSpare->spares.at(0).size, 1000);
}

struct EncodeCase {
  const char* label;
  bool full;
  const char* strictJson;
  const char* lenientJson;
};

const EncodeCase kEncodeCases[] = {
    {"optionals without a value", false,
     R"({"name":"Tekir","age":null,"tag":{"id":"a","size":null},"spares":[],"adopted":null})",
     R"({"name":"Tekir","tag":{"id":"a"},"spares":[]})"},
    {"nested records, lists and a timestamp", true,
     R"({"name":"Pamuk","age":3,"tag":{"id":"a","size":2},"spares":[{"id":"b","size":null},{"id":"c","size":4}],)"
     R"("adopted":800000000.5})",
     R"({"name":"Pamuk","age":3,"tag":{"id":"a","size":2},"spares":[{"id":"b"},{"id":"c","size":4}],)"
     R"("adopted":800000000.5})"},
};

template <JsonRecordPolicy policy>
void expectEncodingAndRoundTrip(const EncodeCase& c) {
  const char* json = policy == strict ? c.strictJson : c.lenientJson;
  const Pet<policy> pet = c.full ? fullPet<policy>() : plainPet<policy>();
  const std::string encoded = encodeRecord(pet).dump();
  EXPECT_EQ(encoded, json);
  const auto decoded = decodeJsonText<Pet<policy>>(encoded);
  ASSERT_TRUE(decoded.has_value()) << decoded.error().message();
  EXPECT_EQ(*decoded, pet);
}

TEST(JsonRecordCodingTest, EncodesUnderEachPolicyAndReadsItBack) {
  forEachCaseAndPolicy(kEncodeCases, [](const EncodeCase& c, auto policy) {
    expectEncodingAndRoundTrip<decltype(policy)::value>(c);
  });
}

}  // namespace
}  // namespace kovi
