#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

#include "KoviKit/wallet/V6InviteCode.h"
#include "KoviKit/wallet/V6InviteLink.h"
#include "tests/support/Refusal.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

// invite-texts.json: texts with the code found in them (null: none), invite
// bodies with their validity, texts with the invite they are recognised as,
// and kovi references with their validity.
const nlohmann::json kTexts = nlohmann::json::parse(testing::testDataFile("wallet", "invite-texts.json"));

// A code glued to a letter, digit, hyphen, underscore or percent escape is no
// code; only ASCII letters fold.
TEST(V6InviteCode, FindsOnlyFreeStandingCodes) {
  for (const auto& row : kTexts["found"]) {
    SCOPED_TRACE(row.dump());
    EXPECT_EQ(V6InviteCode::find(row[0].get<std::string>()).transform(&V6InviteCode::written),
              row[1].is_null() ? std::nullopt : std::optional(row[1].get<std::string>()));
  }
  // An invalid UTF-8 byte elsewhere does not hide a code.
  EXPECT_EQ(V6InviteCode::find("\xff kod: KOVI-ABCD-EFGH \xc3").transform(&V6InviteCode::written), "KOVI-ABCD-EFGH");
}

TEST(V6InviteCode, AlphabetHasThirtyTwoUnambiguousSymbols) {
  EXPECT_EQ(V6InviteCode::kAlphabet.size(), 32u);
  for (const char ambiguous : {'0', '1', 'I', 'O'}) {
    EXPECT_EQ(V6InviteCode::kAlphabet.find(ambiguous), std::string_view::npos) << ambiguous;
  }
  for (const auto& row : kTexts["bodies"]) EXPECT_EQ(V6InviteCode::isBody(row[0].get<std::string>()), row[1]) << row;
}

TEST(V6InviteCode, RecognisesACodeThenAKoviReferenceOrSaysWhy) {
  for (const auto& row : kTexts["recognised"]) {
    SCOPED_TRACE(row.dump());
    const auto target = recognizeInvite(row[0].get<std::string>());
    ASSERT_EQ(target.has_value(), !row[1].is_null());
    if (!target) {
      EXPECT_EQ(target.error().message(), "Bu kovi bağlantısı tanınmadı. Kodu ya da bağlantıyı kontrol et.");
    } else if (row[1] == "code") {
      EXPECT_EQ(*target, V6InviteTarget(V6InviteCode{row[2].get<std::string>()}));
    } else {
      EXPECT_EQ(*target, V6InviteTarget(row[2].get<std::string>()));
    }
  }
}

TEST(V6InviteCode, KoviReferencesAreFourToOneHundredTwentySymbols) {
  for (const auto& row : kTexts["references"]) EXPECT_EQ(isKoviReference(row[0].get<std::string>()), row[1]) << row;
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
