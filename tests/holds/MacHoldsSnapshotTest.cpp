#include "KoviMacHolds/MacHoldsSnapshot.h"

#include "KoviMacHolds/MacHoldsSnapshotFastPath.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "tests/holds/HoldsTestSnapshots.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds {
namespace {

using Kind = MacHoldsSnapshotFailure::Kind;

const std::string fullSnapshot = kovi::testing::testDataFile("holds", "full-snapshot.json");

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

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result(text);
  const auto position = result.find(from);
  EXPECT_NE(position, std::string::npos) << from;
  if (position != std::string::npos) result.replace(position, from.size(), to);
  return result;
}

// Each document is written out or is the full or minimal snapshot with one
// text replaced; a refused one names its failure and the reason it gives.
TEST(MacHoldsSnapshotDecoding, AcceptsOrSaysWhy) {
  const auto rows = parseJson(kovi::testing::testDataFile("holds", "snapshot-documents.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 14) << "snapshot-documents.json";
  for (const nlohmann::json& c : *rows) {
    SCOPED_TRACE(c.dump());
    const auto text = [&](const nlohmann::json& value) { return value.get<std::string>(); };
    const auto decoded = decodeMacHoldsSnapshot(
        c.contains("text") ? text(c.at("text"))
                           : replaced(c.at("base") == "full" ? std::string_view(fullSnapshot) : minimalSnapshot,
                                      text(c.at("replace")[0]), text(c.at("replace")[1])));
    const nlohmann::json refused = decoded ? nlohmann::json() : nlohmann::json{{"kind", enumName(decoded.error().kind)},
                                                                                {"reason", decoded.error().reason}};
    EXPECT_EQ(refused, c.at("refused"));
  }
}

// The decoder tries the fast path first, so the refusals above (missing keys,
// wrong types, fractions, syntax errors in whole snapshots) already prove it
// steps aside there; these are the inputs that table does not try.
TEST(MacHoldsSnapshotFastPath, AgreesWithTheStrictDecoderOrStepsAside) {
  const struct {
    const char* name;
    std::string text;
    bool taken;  // the fast path decodes it (otherwise it leaves it to the strict decoder)
  } cases[] = {
        {"Full", std::string(fullSnapshot), true}, {"Minimal", std::string(minimalSnapshot), true},
        {"NullOptionals",
                 R"({"version":1,"stopped":false,"syncedAt":1,"keepCommunication":true,"examWeek":null,"sleep":null,"allowance":null,"accountScope":null})",
                 true},
        {"IntegralFloats", replaced(replaced(fullSnapshot, "\"startMinute\": 1380", "\"startMinute\": 1380.0"),
                                            "\"endMinute\": 420", "\"endMinute\": 4.2e2"),
                 true},
        {"EscapedText", replaced(fullSnapshot, "\"acct-42\"", R"("\u00e7al\u0131\u015fma \"q\"\n")"), true},
        {"VersionAsFloat", replaced(minimalSnapshot, "\"version\": 1", "\"version\": 1.0"), true},
        // The strict decoder ignores unknown keys once it has checked them.
        {"UnknownKeys", replaced(minimalSnapshot, "\"stopped\"", R"("theme": {"dark": [1, 2]}, "stopped")"), false},
        {"RepeatedUnknownKey", replaced(minimalSnapshot, "\"stopped\"", R"("extra": 1, "extra": 2, "stopped")"),
                 false},
        {"RepeatedKey", replaced(minimalSnapshot, "\"stopped\": true", R"("stopped": true, "stopped": false)"),
                 false},
        {"Version2", replaced(fullSnapshot, "\"version\": 1", "\"version\": 2"), false},
        {"HugeUnsigned", replaced(fullSnapshot, "\"usedMS\": 1200000", "\"usedMS\": 18446744073709551615"), false},
        {"MinuteBeyondInt", replaced(fullSnapshot, "\"startMinute\": 1380", "\"startMinute\": 4294967296"),
                 false},
        {"InvalidUtf8", replaced(fullSnapshot, "acct-42", "\xC3\x28"), false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto fast = decodeMacHoldsSnapshotFast(c.text);
    ASSERT_EQ(fast.has_value(), c.taken);
    if (fast) {
      EXPECT_EQ(decodeJsonText<MacHoldsSnapshot>(c.text), *fast);
    }
  }
}

// Pads a valid snapshot with trailing spaces (still valid JSON) to `size` bytes.
std::string snapshotOfSize(std::size_t size) {
  std::string text(minimalSnapshot);
  text.resize(size, ' ');
  return text;
}

TEST(MacHoldsSnapshotLoading, AppliesTheReadLimits) {
  const struct {
    const char* name;
    std::optional<std::string> contents;  // nullopt: no file
    bool asDirectory;
    std::optional<Kind> failure;
  } cases[] = {{"Missing", std::nullopt, false, Kind::missing},
               {"Directory", std::nullopt, true, Kind::unreadable},
               {"ExactlyTheLimit", snapshotOfSize(65'536), false, std::nullopt},
               {"OneByteOver", snapshotOfSize(65'537), false, Kind::tooLarge},
               {"Garbage", "holds", false, Kind::undecodable}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const kovi::testing::TemporaryDirectory directory;
    std::filesystem::path path = directory.path() / "holds.json";
    if (c.contents) path = directory.write("holds.json", *c.contents);
    if (c.asDirectory) std::filesystem::create_directory(path);

    const auto loaded = loadMacHoldsSnapshot(path);
    ASSERT_EQ(loaded.has_value(), !c.failure) << (loaded ? "" : loaded.error().reason);
    if (!c.failure) continue;
    EXPECT_EQ(enumName(loaded.error().kind), enumName(*c.failure));
    // Read failures name the file.
    if (*c.failure != Kind::undecodable) {
      EXPECT_NE(loaded.error().reason.find(path.string()), std::string::npos) << loaded.error().reason;
    }
  }
}

TEST(MacHoldsSnapshotLocation, LivesUnderTheDataHome) {
  const kovi::testing::ScopedEnvironment dataHome("XDG_DATA_HOME", "/srv/home/data");
  EXPECT_EQ(defaultMacHoldsSnapshotPath(), std::filesystem::path("/srv/home/data/Kovi/Holds/holds.json"));
}

}  // namespace
}  // namespace kovi::holds
