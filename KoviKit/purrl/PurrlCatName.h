#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kovi {

// The longest cat name kept, in user-perceived characters (grapheme
// clusters), so an emoji family or "ş" written with a combining mark counts once.
inline constexpr int kPurrlCatNameMaxCharacters = 24;

// The name a person typed for their cat, cleaned for storing and showing:
// - every run of white space (spaces of any width, tabs, line and paragraph
//   separators) becomes one ASCII space, and the name is trimmed;
// - control characters (Cc), format characters (Cf) other than the zero-width
//   joiner that holds emoji sequences together, private-use (Co), surrogate
//   (Cs) and unassigned (Cn) code points are dropped, as are ill-formed bytes;
// - the rest is put in Unicode normal form C and cut after
//   `kPurrlCatNameMaxCharacters` grapheme clusters.
// No name is left (nullopt) when nothing remains, or when what remains has no
// letter (L*), number (N*) or symbol (S*, which includes emoji): a name made of
// punctuation or combining marks alone is not a name.
std::optional<std::string> normalizedPurrlCatName(std::string_view typed);

}  // namespace kovi
