#include "KoviMacHolds/MacHoldsSnapshot.h"

#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/holds/HoldsTestSnapshots.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi::holds {
namespace {

using Kind = MacHoldsSnapshotFailure::Kind;

constexpr std::string_view fullSnapshot = R"({
  "version": 1,
  "stopped": false,
  "accountScope": "acct-42",
  "syncedAt": 785000000.5,
  "examWeek": {"startDay": "2026-11-20", "endDay": "2026-11-26", "days": 7, "firstMinute": 540,
               "secondMinute": 840, "blockMinutes": 150, "sleepStart": 1380, "sleepEnd": 420,
               "socialMinutes": 45, "strictness": "committed"},
  "sleep": {"startMinute": 1380, "endMinute": 420, "strictness": "chill"},
  "keepCommunication": true,
  "allowance": {"day": "2026-11-22", "usedMS": 1200000, "since": 1795338000000}
})";

constexpr std::string_view minimalSnapshot = R"({"version": 1, "stopped": true, "syncedAt": 0, "keepCommunication": false})";

TEST(MacHoldsSnapshotDecoding, ReadsEveryField) {
  const auto decoded = decodeMacHoldsSnapshot(fullSnapshot);
  ASSERT_TRUE(decoded.has_value()) << decoded.error().reason;
  MacHoldsSnapshot expected;
  expected.version = 1;
  expected.accountScope = "acct-42";
  expected.syncedAt = Date::fromSecondsSince2001(785000000.5);
  expected.examWeek = MacHoldsSnapshot::ExamWeek{"2026-11-20", "2026-11-26", 7, 540, 840, 150, 1380, 420, 45, "committed"};
  expected.sleep = MacHoldsSnapshot::Sleep{1380, 420, "chill"};
  expected.keepCommunication = true;
  expected.allowance = MacFocus4Allowance{"2026-11-22", 1'200'000, 1'795'338'000'000};
  EXPECT_EQ(*decoded, expected);
  // syncedAt counts seconds from 2001-01-01T00:00:00Z.
  EXPECT_EQ(decoded->syncedAt.unixMillis(), (978'307'200LL + 785'000'000LL) * 1000 + 500);
}

struct DecodeCase {
  friend void PrintTo(const DecodeCase& c, std::ostream* out) { *out << c.name; }
  const char* name;
  std::string text;
  std::optional<Kind> failure;  // nullopt: decodes
  std::string reason;           // expected reason when it fails
};

class SnapshotDecodeTest : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(SnapshotDecodeTest, AcceptsOrSaysWhy) {
  const DecodeCase& c = GetParam();
  const auto decoded = decodeMacHoldsSnapshot(c.text);
  if (!c.failure) {
    EXPECT_TRUE(decoded.has_value()) << decoded.error().reason;
    return;
  }
  ASSERT_FALSE(decoded.has_value());
  EXPECT_EQ(enumName(decoded.error().kind), enumName(*c.failure));
  EXPECT_EQ(decoded.error().reason, c.reason);
}

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result(text);
  const auto position = result.find(from);
  EXPECT_NE(position, std::string::npos) << from;
  if (position != std::string::npos) result.replace(position, from.size(), to);
  return result;
}

INSTANTIATE_TEST_SUITE_P(
    Snapshot, SnapshotDecodeTest,
    ::testing::Values(
        DecodeCase{"Minimal", std::string(minimalSnapshot), std::nullopt, ""},
        DecodeCase{"NullOptionals",
                   R"({"version":1,"stopped":false,"syncedAt":1,"keepCommunication":true,"examWeek":null,"sleep":null,"allowance":null,"accountScope":null})",
                   std::nullopt, ""},
        DecodeCase{"UnknownKeysAreIgnored", replaced(minimalSnapshot, "\"stopped\"", "\"theme\": \"dark\", \"stopped\""),
                   std::nullopt, ""},
        DecodeCase{"IntegralFloatMinute", replaced(fullSnapshot, "\"firstMinute\": 540", "\"firstMinute\": 540.0"),
                   std::nullopt, ""},
        DecodeCase{"Version2WithAnotherShape", R"({"version": 2, "holds": []})", Kind::unsupportedVersion,
                   "version 2 is not supported (only 1 is)"},
        DecodeCase{"VersionAsText", replaced(fullSnapshot, "\"version\": 1", "\"version\": \"1\""), Kind::undecodable,
                   "version: expected an integer, found a string"},
        DecodeCase{"MissingVersion", R"({"stopped": false, "syncedAt": 0, "keepCommunication": false})",
                   Kind::undecodable, "version: missing key"},
        DecodeCase{"MissingNestedKey", replaced(fullSnapshot, "\"startDay\": \"2026-11-20\", ", ""), Kind::undecodable,
                   "examWeek.startDay: missing key"},
        DecodeCase{"WrongNestedType", replaced(fullSnapshot, "\"usedMS\": 1200000", "\"usedMS\": \"20m\""),
                   Kind::undecodable, "allowance.usedMS: expected an integer, found a string"},
        DecodeCase{"FractionalMinute", replaced(fullSnapshot, "\"sleepEnd\": 420", "\"sleepEnd\": 420.5"),
                   Kind::undecodable, "examWeek.sleepEnd: expected an integer, found a number"},
        DecodeCase{"NullRequiredKey", replaced(minimalSnapshot, "\"stopped\": true", "\"stopped\": null"),
                   Kind::undecodable, "stopped: expected a boolean, found null"},
        DecodeCase{"ArrayDocument", "[]", Kind::undecodable, "expected an object, found an array"},
        DecodeCase{"NotJson", "{\"version\": 1,", Kind::undecodable,
                   "not valid JSON at line 1, column 15: syntax error while parsing object key - unexpected end of "
                   "input; expected string literal"},
        DecodeCase{"RepeatedKey", "{\"version\": 1, \"version\": 1}", Kind::undecodable, "version: duplicate key"}),
    [](const auto& info) { return std::string(info.param.name); });

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

// The decoder tries the fast path first, so the refusals above (missing keys,
// wrong types, fractions, syntax errors in whole snapshots) already prove it
// steps aside there; these are the inputs that table does not try.
INSTANTIATE_TEST_SUITE_P(
    Snapshot, SnapshotFastPathTest,
    ::testing::Values(
        FastCase{"Full", std::string(fullSnapshot), true},
        FastCase{"Minimal", std::string(minimalSnapshot), true},
        FastCase{"NullOptionals",
                 R"({"version":1,"stopped":false,"syncedAt":1,"keepCommunication":true,"examWeek":null,"sleep":null,"allowance":null,"accountScope":null})",
                 true},
        FastCase{"IntegralFloats", replaced(replaced(fullSnapshot, "\"startMinute\": 1380", "\"startMinute\": 1380.0"),
                                            "\"endMinute\": 420", "\"endMinute\": 4.2e2"),
                 true},
        FastCase{"EscapedText", replaced(fullSnapshot, "\"acct-42\"", R"("\u00e7al\u0131\u015fma \"q\"\n")"), true},
        FastCase{"VersionAsFloat", replaced(minimalSnapshot, "\"version\": 1", "\"version\": 1.0"), true},
        // The strict decoder ignores unknown keys once it has checked them.
        FastCase{"UnknownKeys", replaced(minimalSnapshot, "\"stopped\"", R"("theme": {"dark": [1, 2]}, "stopped")"), false},
        FastCase{"RepeatedUnknownKey", replaced(minimalSnapshot, "\"stopped\"", R"("extra": 1, "extra": 2, "stopped")"),
                 false},
        FastCase{"RepeatedKey", replaced(minimalSnapshot, "\"stopped\": true", R"("stopped": true, "stopped": false)"),
                 false},
        FastCase{"Version2", replaced(fullSnapshot, "\"version\": 1", "\"version\": 2"), false},
        FastCase{"HugeUnsigned", replaced(fullSnapshot, "\"usedMS\": 1200000", "\"usedMS\": 18446744073709551615"), false},
        FastCase{"MinuteBeyondInt", replaced(fullSnapshot, "\"startMinute\": 1380", "\"startMinute\": 4294967296"),
                 false},
        FastCase{"InvalidUtf8", replaced(fullSnapshot, "acct-42", "\xC3\x28"), false}),
    [](const auto& info) { return std::string(info.param.name); });

// Pads a valid snapshot with trailing spaces (still valid JSON) to `size` bytes.
std::string snapshotOfSize(std::size_t size) {
  std::string text(minimalSnapshot);
  text.resize(size, ' ');
  return text;
}

struct LoadCase {
  friend void PrintTo(const LoadCase& c, std::ostream* out) { *out << c.name; }
  const char* name;
  std::optional<std::string> contents;  // nullopt: no file
  bool asDirectory;
  std::optional<Kind> failure;
};

class SnapshotLoadTest : public ::testing::TestWithParam<LoadCase> {};

TEST_P(SnapshotLoadTest, AppliesTheReadLimits) {
  const LoadCase& c = GetParam();
  const kovi::testing::TemporaryDirectory directory;
  std::filesystem::path path = directory.path() / "holds.json";
  if (c.contents) path = directory.write("holds.json", *c.contents);
  if (c.asDirectory) std::filesystem::create_directory(path);

  const auto loaded = loadMacHoldsSnapshot(path);
  if (!c.failure) {
    EXPECT_TRUE(loaded.has_value()) << loaded.error().reason;
    return;
  }
  ASSERT_FALSE(loaded.has_value());
  EXPECT_EQ(enumName(loaded.error().kind), enumName(*c.failure));
  // Read failures name the file.
  if (*c.failure != Kind::undecodable) {
    EXPECT_NE(loaded.error().reason.find(path.string()), std::string::npos) << loaded.error().reason;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Snapshot, SnapshotLoadTest,
    ::testing::Values(LoadCase{"Missing", std::nullopt, false, Kind::missing},
                      LoadCase{"Directory", std::nullopt, true, Kind::unreadable},
                      LoadCase{"ExactlyTheLimit", snapshotOfSize(65'536), false, std::nullopt},
                      LoadCase{"OneByteOver", snapshotOfSize(65'537), false, Kind::tooLarge},
                      LoadCase{"Garbage", "holds", false, Kind::undecodable}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(MacHoldsSnapshotLocation, LivesUnderTheDataHome) {
  const kovi::testing::ScopedEnvironment dataHome("XDG_DATA_HOME", "/srv/home/data");
  EXPECT_EQ(defaultMacHoldsSnapshotPath(), std::filesystem::path("/srv/home/data/Kovi/Holds/holds.json"));
}

}  // namespace
}  // namespace kovi::holds
