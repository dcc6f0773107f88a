#pragma once

#include <optional>
#include <string_view>

namespace kovi {

// The languages the consent summary is written in.
enum class WorkingSummaryLanguage { turkish, english, french };

// "tr", "en" or "fr".
std::optional<WorkingSummaryLanguage> workingSummaryLanguage(std::string_view code);
// The ICU locale the language's numbers and dates are formatted in.
std::string_view workingSummaryLocale(WorkingSummaryLanguage language);

// One summary text in its three languages. Texts may hold positional
// placeholders ({0}, {1}, …) that the line's values fill in; every language
// of a text uses the same placeholders, in whatever order its grammar needs.
struct WorkingSummaryText {
  std::string_view turkish;
  std::string_view english;
  std::string_view french;

  constexpr std::string_view in(WorkingSummaryLanguage language) const {
    switch (language) {
      case WorkingSummaryLanguage::english: return english;
      case WorkingSummaryLanguage::french: return french;
      case WorkingSummaryLanguage::turkish: break;
    }
    return turkish;
  }
};

}  // namespace kovi
