#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/purrl/PurrlCatName.h"

namespace kovi {
namespace {

TEST(PurrlCatNameTest, Normalises) {
  const std::string a23(23, 'a');
  const struct {
    std::string name;
    std::string typed;
    std::optional<std::string> stored;
  } cases[] = {
      {"trimmed and collapsed", " \t Kara\u00A0\u2003 Duman \n", "Kara Duman"},
      {"line separator is a space", "Kara\u2028Duman", "Kara Duman"}, {"controls dropped", "Pa\x01mu\x7Fk", "Pamuk"},
      {"format characters dropped", "Pa\u200Bmu\u202Ek\uFEFF", "Pamuk"},
      {"private use dropped", "Pamuk\uE000", "Pamuk"}, {"unassigned dropped", "Pamuk\U000E0080", "Pamuk"},
      {"ill-formed bytes dropped", "Pa\xC3mu\xFFk", "Pamuk"}, {"decomposed composed", "Tarc\u0327\u0131n", "Tarçın"},
      {"emoji sequence keeps its joiner", "Kedi \U0001F469\u200D\U0001F467", "Kedi \U0001F469\u200D\U0001F467"},
      {"cut after 24 characters", "abcdefghijklmnopqrstuvwxyz", "abcdefghijklmnopqrstuvwx"},
      {"cut counts grapheme clusters", a23 + "s\u0327x", a23 + "\u015F"},
      {"cut counts flags as one", a23 + "\U0001F1F9\U0001F1F7b", a23 + "\U0001F1F9\U0001F1F7"},
      {"cut drops the space before the next word", a23 + " b", a23}, {"empty is no name", "", std::nullopt},
      {"spaces are no name", " \u3000 ", std::nullopt}, {"punctuation is no name", "...!?", std::nullopt},
      {"marks alone are no name", "\u0301\u0308", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(normalizedPurrlCatName(c.typed), c.stored);
  }
}

}  // namespace
}  // namespace kovi
