#include "KoviKit/foundation/Localization.h"

#include <gtest/gtest.h>

namespace kovi {
namespace {

TEST(LocalizationTest, TranslatesPerLanguageAndKeepsUntranslatedTexts) {
  registerTranslations("en", {{"Biraz sonra yeniden dene.", "Try again in a moment."}});
  registerTranslations("fr", {{"Biraz sonra yeniden dene.", "Réessaie dans un instant."}});
  EXPECT_EQ(localized("Biraz sonra yeniden dene.", "en"), "Try again in a moment.");
  EXPECT_EQ(localized("Biraz sonra yeniden dene.", "fr"), "Réessaie dans un instant.");
  EXPECT_EQ(localized("Biraz sonra yeniden dene.", "tr"), "Biraz sonra yeniden dene.");
  EXPECT_EQ(localized("Başka bir metin.", "en"), "Başka bir metin.");
}

}  // namespace
}  // namespace kovi
