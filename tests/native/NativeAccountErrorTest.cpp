#include "KoviKit/native/NativeAccountError.h"

#include <gtest/gtest.h>
#include <unicode/uloc.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/foundation/Localization.h"
#include "KoviKit/native/NativeAccountErrorTable.h"
#include "tests/native/NativeErrorPrinting.h"

namespace kovi {
namespace {

const std::string kGeneric = "Şu anda tamamlanamadı. Yenileyip tekrar dene.";

struct CodeMessage {
  std::string code;
  std::string message;
};

TEST(NativeAccountErrorTableTest, EveryAccountCodeHasItsMessage) {
  const std::vector<CodeMessage> table{
      {"accounts_at_capacity", "Kovi şu anda yeni hesap açmaya kapalı. Kontenjan açıldığında yeniden deneyebilirsin."},
      {"accounts_unavailable", "Hesap servisi henüz kullanıma açık değil."},
      {"retry_registration", "Kayıt tamamlanamadı. Bir kez daha dene."},
      {"retry_sign_in", "Giriş tamamlanamadı. Bir kez daha dene."},
      {"sign_in_required", "Geçiş anahtarınla yeniden giriş yap."},
      {"rate_limited", "Şu an çok fazla istek var. Birkaç dakika sonra yeniden dene."},
      {"wallet_recovery_required", "Cüzdanına erişimini kaybetmemek için hesabını silmeden önce kurtarma bilgilerini saklamalısın."},
      {"invalid_wallet_recovery", "Kurtarma dosyası bu geçiş anahtarıyla eşleşmiyor. Doğru dosyayı seç."},
      {"expired_challenge", "Onay süresi doldu. Baştan başlayıp onayı hemen tamamla."},
      {"invalid_challenge", "Onay isteği eşleşmedi. İşlemi baştan başlatıp tekrar dene."},
      {"invalid_passkey", "Bu geçiş anahtarıyla giriş doğrulanamadı. Kovi için en son kaydettiğin geçiş anahtarını seçip yeniden dene."},
      {"invalid_wallet_credential", "Kurtarma dosyasındaki anahtar okunamadı. Kovi’ten kaydettiğin dosyayı seçtiğinden emin ol."},
      {"wrong_wallet_network", "Cüzdan ağı şu anda doğrulanamadı. Biraz sonra yeniden dene."},
      {"invalid_origin", "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene."},
      {"invalid_request", "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene."},
      {"internal_error", "Bizden kaynaklı bir sorun oldu. Birazdan tekrar dene."},
  };
  for (const CodeMessage& row : table) {
    SCOPED_TRACE(row.code);
    EXPECT_TRUE(kNativeAccountErrorTable.knows(row.code));
    EXPECT_EQ(NativeAccountError::service(row.code).message(kNativeAccountErrorTable), row.message);
  }
  EXPECT_EQ(kNativeAccountErrorTable.messages.size(), table.size()) << "the table has codes this test does not know";
}

TEST(NativeAccountErrorTableTest, UnknownCodesGetTheGenericMessage) {
  // Near misses included: codes are compared exactly.
  for (const std::string code : {"no_such_code", "Internal_error", "internal_error ", "invalid", "", "rate_limit"}) {
    SCOPED_TRACE(code);
    EXPECT_FALSE(kNativeAccountErrorTable.knows(code));
    EXPECT_EQ(NativeAccountError::service(code).message(kNativeAccountErrorTable), kGeneric);
  }
}

TEST(NativeAccountErrorTest, CasesWithoutCodesHaveFixedMessages) {
  const NativeErrorTable emptyTable{"financial", {}};
  struct Case {
    NativeAccountError error;
    std::string message;
  };
  for (const Case& example : std::vector<Case>{
           {NativeAccountError::unavailable(), "Hesap servisine ulaşılamıyor. Biraz sonra yeniden dene."},
           {NativeAccountError::signInRequired(), "Geçiş anahtarınla yeniden giriş yap."},
           {NativeAccountError::invalidResponse(), "Bilgiler doğrulanamadı. Yenileyip tekrar dene."},
           {NativeAccountError::rateLimited(90), "Şu an çok fazla istek var. 2 dakika sonra yeniden dene."},
       }) {
    SCOPED_TRACE(example.error.description());
    EXPECT_EQ(example.error.message(kNativeAccountErrorTable), example.message);
    EXPECT_EQ(example.error.message(emptyTable), example.message) << "these messages must not depend on the area";
  }
  EXPECT_EQ(NativeAccountError::service("accounts_unavailable").message(emptyTable), kGeneric);
}

TEST(NativeAccountErrorTest, OnlyTheMatchingCaseCarriesAWaitOrACode) {
  const auto limited = NativeAccountError::rateLimited(-3);
  EXPECT_EQ(limited.kind(), NativeAccountError::Case::rateLimited);
  EXPECT_EQ(limited.retryAfterSeconds(), -3);
  EXPECT_EQ(limited.code(), std::nullopt);
  const auto service = NativeAccountError::service("internal_error");
  EXPECT_EQ(service.kind(), NativeAccountError::Case::service);
  EXPECT_EQ(service.code(), "internal_error");
  EXPECT_EQ(service.retryAfterSeconds(), std::nullopt);
  EXPECT_NE(NativeAccountError::rateLimited(1), NativeAccountError::rateLimited(2));
  EXPECT_NE(NativeAccountError::service("a"), NativeAccountError::service("b"));
  EXPECT_NE(NativeAccountError::unavailable(), NativeAccountError::invalidResponse());
}

struct WaitWording {
  std::int64_t seconds;
  std::string sentence;
};

void PrintTo(const WaitWording& example, std::ostream* out) { *out << example.seconds << " s"; }

class RateLimitWordingTest : public ::testing::TestWithParam<WaitWording> {};

TEST_P(RateLimitWordingTest, WordsTheWait) {
  EXPECT_EQ(nativeRateLimitMessage(GetParam().seconds), GetParam().sentence);
}

std::string seconds(const std::string& count) { return "Şu an çok fazla istek var. " + count + " saniye sonra yeniden dene."; }
std::string minutes(const std::string& count) { return "Şu an çok fazla istek var. " + count + " dakika sonra yeniden dene."; }

INSTANTIATE_TEST_SUITE_P(
    Waits, RateLimitWordingTest,
    ::testing::Values(WaitWording{60, minutes("1")}, WaitWording{61, minutes("2")}, WaitWording{59, seconds("59")},
                      WaitWording{0, seconds("1")}, WaitWording{-1, seconds("1")}, WaitWording{-3600, seconds("1")},
                      WaitWording{INT64_MIN, seconds("1")}, WaitWording{1, seconds("1")},
                      WaitWording{119, minutes("2")}, WaitWording{120, minutes("2")}, WaitWording{121, minutes("3")},
                      WaitWording{3600, minutes("60")}, WaitWording{INT64_MAX, minutes("153722867280912931")}));

// Switches ICU's default locale, which the localization lookup follows, to a
// language no other test registers translations for.
class LocalizedMessageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = uloc_getDefault();
    setDefaultLocale("xx_XX");
  }
  void TearDown() override { setDefaultLocale(previous_.c_str()); }

  static void setDefaultLocale(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    uloc_setDefault(locale, &status);
    ASSERT_TRUE(U_SUCCESS(status));
  }

 private:
  std::string previous_;
};

TEST_F(LocalizedMessageTest, MessagesGoThroughTheLookupWithTheNumberInPlace) {
  registerTranslations("xx", {
                                 {"Şu an çok fazla istek var. %lld dakika sonra yeniden dene.",
                                  "Too many requests. Try again in %lld minutes."},
                                 {"Geçiş anahtarınla yeniden giriş yap.", "Sign in again with your passkey."},
                                 {"Hesap servisi henüz kullanıma açık değil.", "Accounts are not open yet."},
                             });
  EXPECT_EQ(nativeRateLimitMessage(600), "Too many requests. Try again in 10 minutes.");
  EXPECT_EQ(nativeRateLimitMessage(5), seconds("5")) << "an untranslated sentence stays Turkish";
  EXPECT_EQ(NativeAccountError::signInRequired().message(kNativeAccountErrorTable), "Sign in again with your passkey.");
  EXPECT_EQ(NativeAccountError::service("accounts_unavailable").message(kNativeAccountErrorTable),
            "Accounts are not open yet.");
}

}  // namespace
}  // namespace kovi
