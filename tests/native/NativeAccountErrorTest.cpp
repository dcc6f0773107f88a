#include "KoviKit/native/NativeAccountError.h"

#include <gtest/gtest.h>
#include <unicode/uloc.h>

#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Localization.h"
#include "KoviKit/native/NativeAccountErrorTable.h"
#include "tests/native/NativeErrorPrinting.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

const std::string kGeneric = "Şu anda tamamlanamadı. Yenileyip tekrar dene.";
const std::string kRequestNotVerified = "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene.";

std::string seconds(const std::string& count) { return "Şu an çok fazla istek var. " + count + " saniye sonra yeniden dene."; }
std::string minutes(const std::string& count) { return "Şu an çok fazla istek var. " + count + " dakika sonra yeniden dene."; }

TEST(NativeAccountErrorTest, MessagesFollowTheCaseTheCodeAndTheArea) {
  const NativeErrorTable emptyTable{"financial", {}};
  struct Case {
    NativeAccountError error;
    const NativeErrorTable& table;
    std::string message;
  };
  const std::vector<Case> cases{
      {NativeAccountError::service("accounts_unavailable"), kNativeAccountErrorTable,
       "Hesap servisi henüz kullanıma açık değil."},
      {NativeAccountError::service("invalid_origin"), kNativeAccountErrorTable, kRequestNotVerified},
      // The code that means the same as its case reads as the case.
      {NativeAccountError::service("sign_in_required"), kNativeAccountErrorTable, "Geçiş anahtarınla yeniden giriş yap."},
      // Codes are compared exactly; anything unknown, or any code in an area without a table, is generic.
      {NativeAccountError::service("Internal_error"), kNativeAccountErrorTable, kGeneric},
      {NativeAccountError::service("internal_error "), kNativeAccountErrorTable, kGeneric},
      {NativeAccountError::service("accounts_unavailable"), emptyTable, kGeneric},
      // Cases without codes read the same in every area.
      {NativeAccountError::unavailable(), emptyTable, "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene."},
      {NativeAccountError::signInRequired(), emptyTable, "Geçiş anahtarınla yeniden giriş yap."},
      {NativeAccountError::invalidResponse(), emptyTable, "Bilgiler doğrulanamadı. Yenileyip tekrar dene."},
      {NativeAccountError::rateLimited(90), emptyTable, minutes("2")},
  };
  for (const Case& example : cases) {
    SCOPED_TRACE(example.error.description() + " in " + std::string(example.table.area));
    EXPECT_EQ(example.error.message(example.table), example.message);
  }
  EXPECT_FALSE(kNativeAccountErrorTable.knows("no_such_code"));
}

// Rounded up to whole minutes from a minute on; never less than one second.
TEST(NativeAccountErrorTest, WordsTheWait) {
  const auto rows = parseJson(testing::testDataFile("native", "rate-limit-sentences.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 7) << "rate-limit-sentences.json";
  for (const nlohmann::json& c : *rows) {
    EXPECT_EQ(nativeRateLimitMessage(c.at("seconds").get<std::int64_t>()), c.at("sentence").get<std::string>())
        << c.dump();
  }
}

// ICU's default locale, which the localization lookup follows, switched to a
// language no other test registers translations for.
TEST(LocalizedMessageTest, MessagesGoThroughTheLookupWithTheNumberInPlace) {
  const std::string previous = uloc_getDefault();
  UErrorCode status = U_ZERO_ERROR;
  uloc_setDefault("xx_XX", &status);
  ASSERT_TRUE(U_SUCCESS(status));
  registerTranslations("xx", {{"Şu an çok fazla istek var. %lld dakika sonra yeniden dene.",
                               "Too many requests. Try again in %lld minutes."},
                              {"Hesap servisi henüz kullanıma açık değil.", "Accounts are not open yet."}});
  EXPECT_EQ(nativeRateLimitMessage(600), "Too many requests. Try again in 10 minutes.");
  EXPECT_EQ(nativeRateLimitMessage(5), seconds("5")) << "an untranslated sentence stays Turkish";
  EXPECT_EQ(NativeAccountError::service("accounts_unavailable").message(kNativeAccountErrorTable),
            "Accounts are not open yet.");
  uloc_setDefault(previous.c_str(), &status);
}

}  // namespace
}  // namespace kovi
