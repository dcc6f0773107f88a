#include "KoviKit/foundation/Localization.h"

#include <unicode/uloc.h>

#include <map>
#include <mutex>

namespace kovi {
namespace {

struct TranslationCatalog {
  std::mutex mutex;
  std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>> tables;
};

TranslationCatalog& catalog() {
  static TranslationCatalog instance;
  return instance;
}

}  // namespace

std::string currentLanguage() {
  char language[ULOC_LANG_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  uloc_getLanguage(uloc_getDefault(), language, ULOC_LANG_CAPACITY, &status);
  return U_SUCCESS(status) ? language : "";
}

void registerTranslations(std::string_view language,
                          const std::vector<std::pair<std::string_view, std::string_view>>& translations) {
  TranslationCatalog& shared = catalog();
  std::lock_guard lock(shared.mutex);
  auto& table = shared.tables[std::string(language)];
  for (const auto& [source, translated] : translations) table.insert_or_assign(std::string(source), translated);
}

std::string localized(std::string_view text, std::string_view language) {
  TranslationCatalog& shared = catalog();
  std::lock_guard lock(shared.mutex);
  if (const auto table = shared.tables.find(language); table != shared.tables.end()) {
    if (const auto found = table->second.find(text); found != table->second.end()) return found->second;
  }
  return std::string(text);
}

std::string localized(std::string_view text) { return localized(text, currentLanguage()); }

}  // namespace kovi
