#include <gtest/gtest.h>

#include <string>
#include <variant>

#include "KoviKit/wallet/V6InviteCode.h"
#include "KoviKit/wallet/V6InviteLink.h"
#include "KoviKit/wallet/V6WalletErrors.h"

namespace kovi {
namespace {

struct FindCase {
  std::string name;
  std::string text;
  std::optional<std::string> code;  // the written form found, if any
};

void PrintTo(const FindCase& example, std::ostream* out) { *out << example.name; }

class V6InviteCodeFindTest : public ::testing::TestWithParam<FindCase> {};

TEST_P(V6InviteCodeFindTest, FindsOnlyFreeStandingCodes) {
  const FindCase& example = GetParam();
  const auto found = V6InviteCode::find(example.text);
  ASSERT_EQ(found.has_value(), example.code.has_value()) << example.text;
  if (found) {
    EXPECT_EQ(found->written(), *example.code);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, V6InviteCodeFindTest,
    ::testing::Values(
        FindCase{"codeAlone", "KOVI-ABCD-EFGH", "KOVI-ABCD-EFGH"},
        FindCase{"withoutHyphensInASentence", "Katıl: KOVIABCDEFGH ile gel!", "KOVI-ABCD-EFGH"},
        FindCase{"oneHyphen", "kod KOVIABCD-EFGH burada", "KOVI-ABCD-EFGH"},
        FindCase{"inAMessageWithPunctuation", "Bu akşam (KOVI-7Q2M-XRP4), gelir misin?", "KOVI-7Q2M-XRP4"},
        FindCase{"lowerCaseTyped", "kovi-abcd-efgh", "KOVI-ABCD-EFGH"},
        FindCase{"inALinkPath", "https://kovi.app/davet/KOVI-ABCD-EFGH?ref=wa", "KOVI-ABCD-EFGH"},
        FindCase{"inALinkQuery", "https://kovi.app/j?code=KOVI-ABCD-EFGH&x=1", "KOVI-ABCD-EFGH"},
        FindCase{"afterTurkishLetter", "çKOVI-ABCD-EFGH", "KOVI-ABCD-EFGH"},
        FindCase{"secondCodeWhenFirstIsGlued", "XKOVI-AAAA-BBBB ve KOVI-CCCC-DDDD", "KOVI-CCCC-DDDD"},
        FindCase{"gluedToALetterBefore", "XKOVI-ABCD-EFGH", std::nullopt},
        FindCase{"gluedToALowerCaseLetterBefore", "akovi-abcd-efgh", std::nullopt},
        FindCase{"gluedToADigitAfter", "KOVI-ABCD-EFGH2", std::nullopt},
        FindCase{"gluedToAHyphenAfter", "KOVI-ABCD-EFGH-", std::nullopt},
        FindCase{"gluedToAHyphenBefore", "-KOVI-ABCD-EFGH", std::nullopt},
        FindCase{"gluedToAnUnderscore", "ref_KOVI-ABCD-EFGH", std::nullopt},
        FindCase{"insidePercentEscapeBefore", "https://kovi.app/j?c=%20KOVI-ABCD-EFGH", std::nullopt},
        FindCase{"percentSignAfter", "KOVI-ABCD-EFGH%20", std::nullopt},
        FindCase{"percentSignBefore", "%KOVI-ABCD-EFGH", std::nullopt},
        FindCase{"bodyWithZero", "KOVI-AB0D-EFGH", std::nullopt},
        FindCase{"bodyWithOne", "KOVI-ABCD-EF1H", std::nullopt},
        FindCase{"bodyWithI", "KOVI-ABCI-EFGH", std::nullopt},
        FindCase{"bodyWithO", "KOVI-OBCD-EFGH", std::nullopt},
        FindCase{"doubleHyphen", "KOVI--ABCD-EFGH", std::nullopt},
        FindCase{"shortBody", "KOVI-ABCD-EFG", std::nullopt},
        FindCase{"empty", "", std::nullopt},
        FindCase{"invalidUtf8ElsewhereInTheText", std::string("\xff kod: KOVI-ABCD-EFGH \xc3"), "KOVI-ABCD-EFGH"},
        FindCase{"longSUpperCasesToSButIsNoCodeLetter", "kovi-abcd-efgſ", std::nullopt},
        FindCase{"ffLigatureUpperCasesToFFButIsNoCodeLetters", "kovi-abcd-efﬀ", std::nullopt}),
    [](const auto& info) { return info.param.name; });

TEST(V6InviteCode, AlphabetHasThirtyTwoUnambiguousSymbols) {
  EXPECT_EQ(V6InviteCode::kAlphabet.size(), 32u);
  for (const char ambiguous : {'0', '1', 'I', 'O'}) {
    EXPECT_EQ(V6InviteCode::kAlphabet.find(ambiguous), std::string_view::npos) << ambiguous;
  }
  struct Case {
    std::string_view body;
    bool valid;
  };
  for (const Case& example : {Case{"ABCDEFGH", true}, Case{"23456789", true}, Case{"ZZZZZZZZ", true},
                              Case{"ABCDEFG", false}, Case{"ABCDEFGHJ", false}, Case{"ABCDEFG0", false},
                              Case{"abcdefgh", false}, Case{"ABCD-EFG", false}}) {
    SCOPED_TRACE(example.body);
    EXPECT_EQ(V6InviteCode::isBody(example.body), example.valid);
  }
}

TEST(V6InviteCode, RecognisesACodeThenAKoviReferenceOrSaysWhy) {
  struct Case {
    std::string text;
    std::variant<std::monostate, V6InviteCode, std::string> target;
  };
  for (const Case& example : {
           Case{"davet: KOVI-ABCD-EFGH", V6InviteCode{"ABCDEFGH"}},
           Case{"  KOVI-2026-0501-WALK  ", std::string("KOVI-2026-0501-WALK")},
           Case{"https://kovi.app/k/KOVI-2026-0501-WALK/?utm=x", std::string("KOVI-2026-0501-WALK")},
           Case{"KOVI-ABC", std::monostate{}},
           Case{"kovi-2026-0501-walk", std::monostate{}},
           Case{"https://kovi.app/", std::monostate{}},
           Case{"merhaba", std::monostate{}},
       }) {
    SCOPED_TRACE(example.text);
    const auto target = recognizeInvite(example.text);
    if (std::holds_alternative<std::monostate>(example.target)) {
      ASSERT_FALSE(target.has_value());
      EXPECT_EQ(target.error().message(), "Bu kovi bağlantısı tanınmadı. Kodu ya da bağlantıyı kontrol et.");
    } else if (const auto* code = std::get_if<V6InviteCode>(&example.target)) {
      ASSERT_TRUE(target.has_value());
      EXPECT_EQ(std::get<V6InviteCode>(*target), *code);
    } else {
      ASSERT_TRUE(target.has_value());
      EXPECT_EQ(std::get<std::string>(*target), std::get<std::string>(example.target));
    }
  }
}

TEST(V6InviteCode, KoviReferencesAreFourToOneHundredTwentySymbols) {
  EXPECT_TRUE(isKoviReference("KOVI-ABCD"));
  EXPECT_TRUE(isKoviReference("KOVI-" + std::string(120, '9')));
  EXPECT_FALSE(isKoviReference("KOVI-" + std::string(121, '9')));
  EXPECT_FALSE(isKoviReference("KOVI-ABC"));
  EXPECT_FALSE(isKoviReference("KOVI-AB_D"));
  EXPECT_FALSE(isKoviReference("KOVIABCD"));
}

TEST(V6InviteLink, DecodesTheIssuedLinkAndItsCode) {
  const auto link = decodeJsonText<V6InviteLink>(
      R"({"code":"kovi7q2mxrp4","url":"https://kovi.app/davet/KOVI-7Q2M-XRP4","expiresAt":1780000000.5,"uses":2})");
  ASSERT_TRUE(link.has_value()) << link.error().message();
  ASSERT_TRUE(link->inviteCode().has_value());
  EXPECT_EQ(link->inviteCode()->written(), "KOVI-7Q2M-XRP4");
  EXPECT_FALSE(link->isExpired(1780000000.0));
  EXPECT_TRUE(link->isExpired(1780000000.5));

  const auto missing = decodeJsonText<V6InviteLink>(R"({"code":"KOVI-7Q2M-XRP4","url":"https://kovi.app"})");
  ASSERT_FALSE(missing.has_value());
  EXPECT_EQ(missing.error().message(), "expiresAt: missing key");
}

TEST(V6WalletErrors, GivesEveryInviteCodeItsTurkishMessage) {
  struct Case {
    std::string_view code;
    std::string_view message;
  };
  for (const Case& example : {
           Case{"invite_not_found", "Bu davet kodu bulunamadı. Kodu kontrol et."},
           Case{"invitation_join_pending",
                "Bu davet için başlattığın katılım onayı hâlâ açık. Birkaç dakika sonra yeniden dene."},
           Case{"invite_links_unavailable", "Davet bağlantısı şu anda kullanılamıyor. Biraz sonra yeniden dene."},
           Case{"invitation_no_longer_valid", "Bu davet artık geçerli değil."},
           Case{"invite_creation_unavailable", "Davet şu anda oluşturulamıyor. Biraz sonra yeniden dene."},
           Case{"invite_unheard_of", "Şu anda tamamlanamadı. Yenileyip tekrar dene."},
       }) {
    SCOPED_TRACE(example.code);
    EXPECT_EQ(v6WalletErrorTable().messageFor(example.code), example.message);
  }
  EXPECT_EQ(v6WalletErrorTable().area, "v6/wallet");
}

}  // namespace
}  // namespace kovi
