#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "KoviKit/wallet/V6InviteCode.h"
#include "KoviKit/wallet/V6InviteLink.h"
#include "tests/support/Refusal.h"

namespace kovi {
namespace {

TEST(V6InviteCode, FindsOnlyFreeStandingCodes) {
  const std::string code = "KOVI-ABCD-EFGH";
  const struct {
    std::string text;
    std::optional<std::string> code;  // the written form found, if any
  } cases[] = {
      {"KOVI-ABCD-EFGH", code}, {"Katıl: KOVIABCDEFGH ile gel!", code}, {"kod KOVIABCD-EFGH burada", code},
      {"Bu akşam (KOVI-7Q2M-XRP4), gelir misin?", "KOVI-7Q2M-XRP4"}, {"kovi-abcd-efgh", code},
      {"https://kovi.app/j?code=KOVI-ABCD-EFGH&x=1", code},
      {"çKOVI-ABCD-EFGH", code}, {"XKOVI-AAAA-BBBB ve KOVI-CCCC-DDDD", "KOVI-CCCC-DDDD"},
      // Glued to a letter, digit, hyphen, underscore or percent escape, it is no code.
      {"XKOVI-ABCD-EFGH", std::nullopt}, {"KOVI-ABCD-EFGH2", std::nullopt}, {"KOVI-ABCD-EFGH-", std::nullopt},
      {"-KOVI-ABCD-EFGH", std::nullopt}, {"ref_KOVI-ABCD-EFGH", std::nullopt},
      {"https://kovi.app/j?c=%20KOVI-ABCD-EFGH", std::nullopt},
      {"KOVI-ABCD-EFGH%20", std::nullopt}, {"KOVI-AB0D-EFGH", std::nullopt}, {"KOVI-OBCD-EFGH", std::nullopt},
      {"KOVI--ABCD-EFGH", std::nullopt}, {"KOVI-ABCD-EFG", std::nullopt},
      // An invalid UTF-8 byte elsewhere does not hide a code; only ASCII letters fold.
      {std::string("\xff kod: KOVI-ABCD-EFGH \xc3"), code}, {"kovi-abcd-efgſ", std::nullopt},
      {"kovi-abcd-efﬀ", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(V6InviteCode::find(c.text).transform(&V6InviteCode::written), c.code);
  }
}

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
  const struct {
    std::string text;
    std::optional<V6InviteTarget> target;  // none: not recognised
  } cases[] = {
      {"davet: KOVI-ABCD-EFGH", V6InviteCode{"ABCDEFGH"}},
      {"  KOVI-2026-0501-WALK  ", std::string("KOVI-2026-0501-WALK")},
      {"https://kovi.app/k/KOVI-2026-0501-WALK/?utm=x", std::string("KOVI-2026-0501-WALK")},
      {"KOVI-ABC", std::nullopt}, {"kovi-2026-0501-walk", std::nullopt}, {"https://kovi.app/", std::nullopt},
      {"merhaba", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const auto target = recognizeInvite(c.text);
    ASSERT_EQ(target.has_value(), c.target.has_value());
    if (target) {
      EXPECT_EQ(*target, *c.target);
    } else {
      EXPECT_EQ(target.error().message(), "Bu kovi bağlantısı tanınmadı. Kodu ya da bağlantıyı kontrol et.");
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

  EXPECT_EQ(testing::refusalOf(decodeJsonText<V6InviteLink>(R"({"code":"KOVI-7Q2M-XRP4","url":"https://kovi.app"})")),
            "expiresAt: missing key");
}

}  // namespace
}  // namespace kovi
