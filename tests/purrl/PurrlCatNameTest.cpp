#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

#include "KoviKit/purrl/PurrlCatName.h"

namespace kovi {
namespace {

struct NameCase {
  std::string name;
  std::string typed;
  std::optional<std::string> stored;
  friend void PrintTo(const NameCase& c, std::ostream* out) { *out << c.name; }
};

class PurrlCatNameTest : public ::testing::TestWithParam<NameCase> {};

TEST_P(PurrlCatNameTest, Normalises) { EXPECT_EQ(normalizedPurrlCatName(GetParam().typed), GetParam().stored); }

INSTANTIATE_TEST_SUITE_P(
    Names, PurrlCatNameTest,
    ::testing::Values(
        NameCase{"plain", "Tarçın", "Tarçın"},
        NameCase{"trimmedAndCollapsed", " \t Kara\u00A0\u2003 Duman \n", "Kara Duman"},
        NameCase{"lineSeparatorIsSpace", "Kara\u2028Duman", "Kara Duman"},
        NameCase{"controlsDropped", "Pa\x01mu\x7Fk", "Pamuk"},
        NameCase{"formatCharactersDropped", "Pa\u200Bmu\u202Ek\uFEFF", "Pamuk"},
        NameCase{"privateUseDropped", "Pamuk\uE000", "Pamuk"},
        NameCase{"unassignedDropped", "Pamuk\U000E0080", "Pamuk"},
        NameCase{"illFormedBytesDropped", "Pa\xC3mu\xFFk", "Pamuk"},
        NameCase{"decomposedComposed", "Tarc\u0327\u0131n", "Tarçın"},
        NameCase{"emojiSequenceKeepsItsJoiner", "Kedi \U0001F469\u200D\U0001F467", "Kedi \U0001F469\u200D\U0001F467"},
        NameCase{"cutAfter24Characters", "abcdefghijklmnopqrstuvwxyz", "abcdefghijklmnopqrstuvwx"},
        NameCase{"cutCountsGraphemeClusters", std::string(23, 'a') + "s\u0327x", std::string(23, 'a') + "\u015F"},
        NameCase{"cutCountsFlagsAsOne", std::string(23, 'a') + "\U0001F1F9\U0001F1F7b",
                 std::string(23, 'a') + "\U0001F1F9\U0001F1F7"},
        NameCase{"cutDropsTheSpaceBeforeTheNextWord", std::string(23, 'a') + " b", std::string(23, 'a')},
        NameCase{"emptyIsNoName", "", std::nullopt},
        NameCase{"spacesAreNoName", " \u3000 ", std::nullopt},
        NameCase{"punctuationIsNoName", "...!?", std::nullopt},
        NameCase{"marksAloneAreNoName", "\u0301\u0308", std::nullopt}),
    [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace kovi
