#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace kovi::holds {
namespace {

constexpr std::string_view examWeek =
    R"("examWeek":{"startDay":"2026-11-20","endDay":"2026-11-26","days":7,"firstMinute":540,"secondMinute":840,)"
    R"("blockMinutes":150,"sleepStart":1380,"sleepEnd":420,"socialMinutes":45,"strictness":"committed"})";

// A snapshot with `middle` spliced in after the required keys.
std::string snapshotWith(std::string_view middle) {
  return R"({"version":1,"stopped":false,"syncedAt":785000000.5,"keepCommunication":true)" +
         (middle.empty() ? std::string() : "," + std::string(middle)) + "}";
}

struct FastCase {
  friend void PrintTo(const FastCase& c, std::ostream* out) { *out << c.name; }
  const char* name;
  std::string text;
  bool taken;  // the fast path decodes it (otherwise it leaves it to the strict decoder)
};

class SnapshotFastPathTest : public ::testing::TestWithParam<FastCase> {};

TEST_P(SnapshotFastPathTest, AgreesWithTheStrictDecoderOrStepsAside) {
  const FastCase& c = GetParam();
  const auto fast = decodeMacHoldsSnapshotFast(c.text);
  ASSERT_EQ(fast.has_value(), c.taken);
  if (fast) {
    const auto strict = decodeJsonText<MacHoldsSnapshot>(c.text);
    ASSERT_TRUE(strict.has_value()) << strict.error().message();
    EXPECT_EQ(*fast, *strict);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Snapshot, SnapshotFastPathTest,
    ::testing::Values(
        FastCase{"Full",
                 snapshotWith(std::string(examWeek) +
                              R"(,"sleep":{"startMinute":1380,"endMinute":420,"strictness":"chill"},)"
                              R"("accountScope":"acct-42","allowance":{"day":"2026-11-22","usedMS":1200000,"since":1795338000000})"),
                 true},
        FastCase{"Minimal", snapshotWith(""), true},
        FastCase{"NullOptionals", snapshotWith(R"("examWeek":null,"sleep":null,"allowance":null,"accountScope":null)"),
                 true},
        // The strict decoder ignores unknown keys once it has checked them.
        FastCase{"UnknownKeys", snapshotWith(R"("theme":{"dark":[1,2]},"extra":null)"), false},
        FastCase{"RepeatedUnknownKey", snapshotWith(R"("extra":1,"extra":2)"), false},
        FastCase{"IntegralFloats", snapshotWith(R"("sleep":{"startMinute":1380.0,"endMinute":4.2e2,"strictness":""})"), true},
        FastCase{"IntegerSyncedAt", R"({"version":1,"stopped":true,"syncedAt":7,"keepCommunication":false})", true},
        FastCase{"EscapedText", snapshotWith(R"("accountScope":"\u00e7al\u0131\u015fma \"q\"\n")"), true},
        FastCase{"VersionAsFloat", R"({"version":1.0,"stopped":true,"syncedAt":0,"keepCommunication":false})", true},
        // Everything below is left to the strict decoder.
        FastCase{"RepeatedKey", R"({"version":1,"stopped":true,"stopped":false,"syncedAt":0,"keepCommunication":false})",
                 false},
        FastCase{"Version2", R"({"version":2,"stopped":true,"syncedAt":0,"keepCommunication":false})", false},
        FastCase{"HugeUnsigned", snapshotWith(R"("allowance":{"day":"d","usedMS":18446744073709551615})"), false},
        FastCase{"FractionalMinute", snapshotWith(R"("sleep":{"startMinute":1.5,"endMinute":4,"strictness":""})"), false},
        FastCase{"MinuteBeyondInt", snapshotWith(R"("sleep":{"startMinute":4294967296,"endMinute":4,"strictness":""})"),
                 false},
        FastCase{"NullRequiredKey", R"({"version":1,"stopped":null,"syncedAt":0,"keepCommunication":false})", false},
        FastCase{"MissingKey", R"({"version":1,"syncedAt":0,"keepCommunication":false})", false},
        FastCase{"WrongType", snapshotWith(R"("accountScope":42)"), false},
        FastCase{"InvalidUtf8", snapshotWith("\"accountScope\":\"\xC3\x28\""), false},
        FastCase{"Truncated", R"({"version":1,"stopped":)", false},
        FastCase{"NotAnObject", "[1]", false}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace kovi::holds
