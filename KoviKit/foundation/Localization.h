#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kovi {

// The localization lookup user texts pass through. Texts are written in the
// source in their original language (Turkish for the framework's messages,
// English for the agent's); a translation table registered for a language
// replaces them for that language, and a text with no translation stays as it
// is. Safe to call from any thread.

// The process's language: ICU's default locale ("tr", "en", "fr", …), which
// follows LC_ALL, LC_MESSAGES and LANG.
std::string currentLanguage();

// Adds translations (source text → translated text) for `language`.
void registerTranslations(std::string_view language,
                          const std::vector<std::pair<std::string_view, std::string_view>>& translations);

std::string localized(std::string_view text, std::string_view language);
std::string localized(std::string_view text);

}  // namespace kovi
